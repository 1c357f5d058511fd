#pragma once

#include "coordinates/DatumTable.h"
#include "coordinates/GridBuilders.h"

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

// Codes and names of the EPSG registry (version 10.076) for the grids and datums of the catalogue, as its
// projected and geographic coordinate reference systems have them.

/// A geographic system by the nine numbers that stand for its datum.
struct EpsgDatum {
    QuorvantDatum::Numbers numbers;
    int code;
    std::string_view name;
    std::string_view datum;
    std::string_view ellipsoid;
};

// clang-format off
/// In the order of the identifiers; those of Hawaii and Puerto Rico, which only grids have, come last.
inline constexpr std::array<EpsgDatum, 29> EpsgDatums{{
    {DatumNumbers(1),  4326, "WGS 84",       "World Geodetic System 1984",                  "WGS 84"},
    {DatumNumbers(2),  4258, "ETRS89",       "European Terrestrial Reference System 1989",  "GRS 1980"},
    {DatumNumbers(3),  4277, "OSGB36",       "Ordnance Survey of Great Britain 1936",       "Airy 1830"},
    {DatumNumbers(4),  4149, "CH1903",       "CH1903",                                      "Bessel 1841"},
    {DatumNumbers(5),  4124, "RT90",         "Rikets koordinatsystem 1990",                 "Bessel 1841"},
    {DatumNumbers(6),  4299, "TM65",         "TM65",                                        "Airy Modified 1849"},
    {DatumNumbers(7),  4123, "KKJ",          "Kartastokoordinaattijarjestelma (1966)",      "International 1924"},
    {DatumNumbers(8),  4181, "LUREF",        "Luxembourg Reference Frame",                  "International 1924"},
    {DatumNumbers(9),  4322, "WGS 72",       "World Geodetic System 1972",                  "WGS 72"},
    {DatumNumbers(10), 4203, "AGD84",        "Australian Geodetic Datum 1984",              "Australian National Spheroid"},
    {DatumNumbers(11), 4283, "GDA94",        "Geocentric Datum of Australia 1994",          "GRS 1980"},
    {DatumNumbers(12), 4312, "MGI",          "Militar-Geographische Institut",              "Bessel 1841"},
    {DatumNumbers(13), 4272, "NZGD49",       "New Zealand Geodetic Datum 1949",             "International 1924"},
    {DatumNumbers(14), 4167, "NZGD2000",     "New Zealand Geodetic Datum 2000",             "GRS 1980"},
    {DatumNumbers(15), 4275, "NTF",          "Nouvelle Triangulation Francaise",            "Clarke 1880 (IGN)"},
    {DatumNumbers(16), 4313, "BD72",         "Reseau National Belge 1972",                  "International 1924"},
    {DatumNumbers(17), 4230, "ED50",         "European Datum 1950",                         "International 1924"},
    {DatumNumbers(18), 4314, "DHDN",         "Deutsches Hauptdreiecksnetz",                 "Bessel 1841"},
    {DatumNumbers(19), 4269, "NAD83",        "North American Datum 1983",                   "GRS 1980"},
    {DatumNumbers(20), 4267, "NAD27",        "North American Datum 1927",                   "Clarke 1866"},
    {DatumNumbers(21), 4267, "NAD27",        "North American Datum 1927",                   "Clarke 1866"},
    {DatumNumbers(22), 4267, "NAD27",        "North American Datum 1927",                   "Clarke 1866"},
    {DatumNumbers(23), 4267, "NAD27",        "North American Datum 1927",                   "Clarke 1866"},
    {DatumNumbers(24), 4289, "Amersfoort",   "Amersfoort",                                  "Bessel 1841"},
    {DatumNumbers(25), 4265, "Monte Mario",  "Monte Mario",                                 "International 1924"},
    {DatumNumbers(26), 4273, "NGO 1948",     "NGO 1948",                                    "Bessel Modified"},
    {DatumNumbers(27), 4230, "ED50",         "European Datum 1950",                         "International 1924"},
    {OldHawaiianNumbers,    4135, "Old Hawaiian", "Old Hawaiian",                           "Clarke 1866"},
    {PuertoRico1927Numbers, 4139, "Puerto Rico",  "Puerto Rico",                            "Clarke 1866"},
}};

/// The geographic system below a projected one, where that is not the one of the grid's datum: the same datum
/// counted from another meridian, or under another name.
struct EpsgBase {
    int code;
    std::string_view name;
    std::string_view datum;
    std::string_view meridian = {};
    double longitude = 0; ///< of the meridian, degrees from Greenwich
};
inline constexpr EpsgBase EpsgParis{4807, "NTF (Paris)", "Nouvelle Triangulation Francaise (Paris)", "Paris", 2.33722917};
inline constexpr EpsgBase EpsgOslo{4817, "NGO 1948 (Oslo)", "NGO 1948 (Oslo)", "Oslo", Dms(10, 43, 22.5)};
inline constexpr EpsgBase EpsgRgf93{4171, "RGF93 v1", "Reseau Geodesique Francais 1993 v1"};

/// A grid without zones, or one zone of a list.
struct EpsgGridRow {
    std::int16_t identifier;
    int code;
    std::string_view name;
    bool northFirst = false; ///< its first axis is the northing
    const EpsgBase* base = nullptr; ///< null: the grid's datum
};

// System 34 and System 45 have no code.
inline constexpr std::array<EpsgGridRow, 32> EpsgGrids{{
    {3,  27700, "OSGB36 / British National Grid"},
    {4,  29902, "TM65 / Irish Grid"},
    {6,  3021,  "RT90 2.5 gon V", true},
    {7,  21781, "CH1903 / LV03"},
    {9,  2391,  "KKJ / Finland zone 1", true},
    {10, 2392,  "KKJ / Finland zone 2", true},
    {11, 2393,  "KKJ / Finland Uniform Coordinate System", true},
    {12, 2394,  "KKJ / Finland zone 4", true},
    {14, 2169,  "LUREF / Luxembourg TM", true},
    {17, 31257, "MGI / Austria GK M28", true},
    {18, 31258, "MGI / Austria GK M31", true},
    {19, 31259, "MGI / Austria GK M34", true},
    {20, 2193,  "NZGD2000 / New Zealand Transverse Mercator 2000", true},
    {21, 27200, "NZGD49 / New Zealand Map Grid"},
    {22, 31370, "BD72 / Belgian Lambert 72"},
    {23, 27561, "NTF (Paris) / Lambert Nord France", false, &EpsgParis},
    {24, 27562, "NTF (Paris) / Lambert Centre France", false, &EpsgParis},
    {25, 27563, "NTF (Paris) / Lambert Sud France", false, &EpsgParis},
    {26, 27564, "NTF (Paris) / Lambert Corse", false, &EpsgParis},
    {27, 2154,  "RGF93 v1 / Lambert-93", false, &EpsgRgf93},
    {34, 28992, "Amersfoort / RD New"},
    {35, 3003,  "Monte Mario / Italy zone 1"},
    {36, 3004,  "Monte Mario / Italy zone 2"},
    {37, 27391, "NGO 1948 (Oslo) / NGO zone I", true, &EpsgOslo},
    {38, 27392, "NGO 1948 (Oslo) / NGO zone II", true, &EpsgOslo},
    {39, 27393, "NGO 1948 (Oslo) / NGO zone III", true, &EpsgOslo},
    {40, 27394, "NGO 1948 (Oslo) / NGO zone IV", true, &EpsgOslo},
    {41, 27395, "NGO 1948 (Oslo) / NGO zone V", true, &EpsgOslo},
    {42, 27396, "NGO 1948 (Oslo) / NGO zone VI", true, &EpsgOslo},
    {43, 27397, "NGO 1948 (Oslo) / NGO zone VII", true, &EpsgOslo},
    {44, 27398, "NGO 1948 (Oslo) / NGO zone VIII", true, &EpsgOslo},
    {45, 27572, "NTF (Paris) / Lambert zone II", false, &EpsgParis},
}};

/// Typed zones that have a code: `base` + zone, with the name "start zone N" + `end`.
struct EpsgZones {
    std::int16_t identifier;
    int first;
    int last;
    int base;
    std::string_view start;
    std::string_view end;
    bool northFirst = false;
};
inline constexpr std::array<EpsgZones, 13> EpsgTypedZones{{
    {1,  1,  60, 32600, "WGS 84 / UTM zone ", "N"},
    {2,  1,  60, 32700, "WGS 84 / UTM zone ", "S"},
    {13, 28, 37, 25800, "ETRS89 / UTM zone ", "N"},
    {15, 49, 56, 20300, "AGD84 / AMG zone ", ""},
    {16, 48, 58, 28300, "GDA94 / MGA zone ", ""},
    {28, 28, 38, 23000, "ED50 / UTM zone ", "N"},
    {29, 1,  1,  5679,  "DHDN / 3-degree Gauss-Kruger zone ", " (E-N)"},
    {29, 2,  5,  31464, "DHDN / 3-degree Gauss-Kruger zone ", "", true},
    {32, 1,  22, 26700, "NAD27 / UTM zone ", "N"},
    {32, 59, 60, 3311,  "NAD27 / UTM zone ", "N"},
    {33, 1,  23, 26900, "NAD83 / UTM zone ", "N"},
    {33, 59, 60, 3313,  "NAD83 / UTM zone ", "N"},
    {47, 28, 38, 23000, "ED50 / UTM zone ", "N"},
}};
// clang-format on

/// A state-plane zone in metres.
struct EpsgZone {
    std::int32_t zone;
    int code;
    std::string_view name; ///< after "NAD83 / "
};

/// The zones of NAD83. Those of NAD27 have codes for feet alone.
std::span<const EpsgZone> EpsgStatePlaneNad83();
