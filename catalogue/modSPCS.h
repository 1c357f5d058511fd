#pragma once

#include <array>
#include <cstddef>
#include <string_view>

// The zones of the United States' State Plane Coordinate System as they are offered: four-digit code and
// name. An index is checked with .at(); the code as a number is the zone of the coordinate component.

/// On which of the two datums a zone is offered.
enum class SpcsDatum { Both, Nad27, Nad83 };

struct SpcsRow {
    std::string_view code;
    std::string_view name;
    SpcsDatum datum = SpcsDatum::Both;
};

// By state name, with exceptions that the list's users know: Alaska follows Alabama, Hawaii follows Georgia,
// Puerto Rico comes last, Michigan's old zones precede its current ones, Florida lists East, West, North.
// clang-format off
inline constexpr std::array<SpcsRow, 136> SpcsTable{{
    {"0101", "Alabama East"},
    {"0102", "Alabama West"},
    {"5002", "Alaska Zone 2"},
    {"5003", "Alaska Zone 3"},
    {"5004", "Alaska Zone 4"},
    {"5005", "Alaska Zone 5"},
    {"5006", "Alaska Zone 6"},
    {"5007", "Alaska Zone 7"},
    {"5008", "Alaska Zone 8"},
    {"5009", "Alaska Zone 9"},
    {"5010", "Alaska Zone 10"},
    {"0201", "Arizona East"},
    {"0202", "Arizona Central"},
    {"0203", "Arizona West"},
    {"0301", "Arkansas North"},
    {"0302", "Arkansas South"},
    {"0401", "California Zone 1"},
    {"0402", "California Zone 2"},
    {"0403", "California Zone 3"},
    {"0404", "California Zone 4"},
    {"0405", "California Zone 5"},
    {"0406", "California Zone 6"},
    {"0407", "California Zone 7", SpcsDatum::Nad27},
    {"0501", "Colorado North"},
    {"0502", "Colorado Central"},
    {"0503", "Colorado South"},
    {"0600", "Connecticut"},
    {"0700", "Delaware"},
    {"0901", "Florida East"},
    {"0902", "Florida West"},
    {"0903", "Florida North"},
    {"1001", "Georgia East"},
    {"1002", "Georgia West"},
    {"5101", "Hawaii Zone 1"},
    {"5102", "Hawaii Zone 2"},
    {"5103", "Hawaii Zone 3"},
    {"5104", "Hawaii Zone 4"},
    {"5105", "Hawaii Zone 5"},
    {"1101", "Idaho East"},
    {"1102", "Idaho Central"},
    {"1103", "Idaho West"},
    {"1201", "Illinois East"},
    {"1202", "Illinois West"},
    {"1301", "Indiana East"},
    {"1302", "Indiana West"},
    {"1401", "Iowa North"},
    {"1402", "Iowa South"},
    {"1501", "Kansas North"},
    {"1502", "Kansas South"},
    {"1601", "Kentucky North"},
    {"1602", "Kentucky South"},
    {"1701", "Louisiana North"},
    {"1702", "Louisiana South"},
    {"1703", "Louisiana Offshore"},
    {"1801", "Maine East"},
    {"1802", "Maine West"},
    {"1900", "Maryland"},
    {"2001", "Massachusetts Mainland"},
    {"2002", "Massachusetts Island"},
    {"2101", "Michigan East (old)", SpcsDatum::Nad27},
    {"2102", "Michigan Central (old)", SpcsDatum::Nad27},
    {"2103", "Michigan West (old)", SpcsDatum::Nad27},
    {"2111", "Michigan North"},
    {"2112", "Michigan Central"},
    {"2113", "Michigan South"},
    {"2201", "Minnesota North"},
    {"2202", "Minnesota Central"},
    {"2203", "Minnesota South"},
    {"2300", "Mississippi MSTM", SpcsDatum::Nad83},
    {"2301", "Mississippi East"},
    {"2302", "Mississippi West"},
    {"2401", "Missouri East"},
    {"2402", "Missouri Central"},
    {"2403", "Missouri West"},
    {"2501", "Montana North", SpcsDatum::Nad27},
    {"2502", "Montana Central", SpcsDatum::Nad27},
    {"2503", "Montana South", SpcsDatum::Nad27},
    {"2601", "Nebraska North", SpcsDatum::Nad27},
    {"2602", "Nebraska South", SpcsDatum::Nad27},
    {"2500", "Montana", SpcsDatum::Nad83},
    {"2600", "Nebraska", SpcsDatum::Nad83},
    {"2701", "Nevada East"},
    {"2702", "Nevada Central"},
    {"2703", "Nevada West"},
    {"2800", "New Hampshire"},
    {"2900", "New Jersey"},
    {"3001", "New Mexico East"},
    {"3002", "New Mexico Central"},
    {"3003", "New Mexico West"},
    {"3101", "New York East"},
    {"3102", "New York Central"},
    {"3103", "New York West"},
    {"3104", "New York Long Island"},
    {"3200", "North Carolina"},
    {"3301", "North Dakota North"},
    {"3302", "North Dakota South"},
    {"3401", "Ohio North"},
    {"3402", "Ohio South"},
    {"3501", "Oklahoma North"},
    {"3502", "Oklahoma South"},
    {"3601", "Oregon North"},
    {"3602", "Oregon South"},
    {"3701", "Pennsylvania North"},
    {"3702", "Pennsylvania South"},
    {"3800", "Rhode Island"},
    {"3901", "South Carolina North", SpcsDatum::Nad27},
    {"3902", "South Carolina South", SpcsDatum::Nad27},
    {"3900", "South Carolina", SpcsDatum::Nad83},
    {"4001", "South Dakota North"},
    {"4002", "South Dakota South"},
    {"4100", "Tennessee"},
    {"4201", "Texas North"},
    {"4202", "Texas North Central"},
    {"4203", "Texas Central"},
    {"4204", "Texas South Central"},
    {"4205", "Texas South"},
    {"4301", "Utah North"},
    {"4302", "Utah Central"},
    {"4303", "Utah South"},
    {"4400", "Vermont"},
    {"4501", "Virginia North"},
    {"4502", "Virginia South"},
    {"4601", "Washington North"},
    {"4602", "Washington South"},
    {"4701", "West Virginia North"},
    {"4702", "West Virginia South"},
    {"4801", "Wisconsin North"},
    {"4802", "Wisconsin Central"},
    {"4803", "Wisconsin South"},
    {"4901", "Wyoming East"},
    {"4902", "Wyoming East Central"},
    {"4903", "Wyoming West Central"},
    {"4904", "Wyoming West"},
    {"5201", "Puerto Rico North", SpcsDatum::Nad27},
    {"5202", "Puerto Rico South", SpcsDatum::Nad27},
    {"5200", "Puerto Rico", SpcsDatum::Nad83},
}};
// clang-format on

/// One column of the rows that the datum has, in table order.
template <std::size_t Count>
constexpr std::array<std::string_view, Count> SpcsColumn(SpcsDatum datum, std::string_view SpcsRow::*column) {
    std::array<std::string_view, Count> texts{};
    std::size_t next = 0;
    for (const SpcsRow& row : SpcsTable) {
        if (row.datum == SpcsDatum::Both || row.datum == datum)
            texts.at(next++) = row.*column; // one row too many does not compile
    }
    return texts;
}

inline constexpr auto SpcsNad27Code = SpcsColumn<131>(SpcsDatum::Nad27, &SpcsRow::code);
inline constexpr auto SpcsNad27Name = SpcsColumn<131>(SpcsDatum::Nad27, &SpcsRow::name);
inline constexpr auto SpcsNad83Code = SpcsColumn<123>(SpcsDatum::Nad83, &SpcsRow::code);
inline constexpr auto SpcsNad83Name = SpcsColumn<123>(SpcsDatum::Nad83, &SpcsRow::name);

// One row too few would leave empty texts at the end.
static_assert(!SpcsNad27Code.back().empty() && !SpcsNad83Code.back().empty());
