#pragma once

#include <array>
#include <cstdint>
#include <string_view>

// The texts of the catalogue's grids and datums with their identifiers.

/// How a grid comes by its zone.
enum class ZoneKind { None, List, Typed, StatePlane };

struct GridEntry {
    std::string_view text;
    std::int16_t identifier; ///< of the first zone, for a zone list
    ZoneKind zoneKind = ZoneKind::None;
    std::int16_t identifiers = 1; ///< one for each zone of a zone list
};

// Identifiers 5, 8 and 46 are not given to any grid.
inline constexpr std::array<GridEntry, 30> GridEntries{{
    {"UTM North (wgs84)", 1, ZoneKind::Typed},
    {"UTM South (wgs84)", 2, ZoneKind::Typed},
    {"British National Grid", 3},
    {"Irish National Grid", 4},
    {"Swedish Grid (rt90)", 6},
    {"Swiss Grid (ch1903)", 7},
    {"Finnish Grid", 9, ZoneKind::List, 4},
    {"UTM (etrs89)", 13, ZoneKind::Typed},
    {"Luxembourg Grid (luref)", 14},
    {"Australian Map Grid (amg84)", 15, ZoneKind::Typed},
    {"Map Grid of Australia (mga94)", 16, ZoneKind::Typed},
    {"Bundesmeldenetz", 17, ZoneKind::List, 3},
    {"NZ Transverse Mercator (2000)", 20},
    {"NZ Map Grid (1972)", 21},
    {"Belgium Grid", 22},
    {"French Grid (ntf)", 23, ZoneKind::List, 4},
    {"French Grid (rgf93)", 27},
    {"UTM (ed50)", 28, ZoneKind::Typed},
    {"German Grid (Potsdam)", 29, ZoneKind::Typed},
    {"State Plane (nad27)", 30, ZoneKind::StatePlane},
    {"State Plane (nad83)", 31, ZoneKind::StatePlane},
    {"UTM (nad27)", 32, ZoneKind::Typed},
    {"UTM (nad83)", 33, ZoneKind::Typed},
    {"Dutch Grid (Amersfoort)", 34},
    {"Gauss Boaga (roma40)", 35, ZoneKind::List, 2},
    {"Norwegian Grid (ngo48)", 37, ZoneKind::List, 8},
    {"France Lambert 2 Etendu", 45},
    {"UTM (ed50 Denmark)", 47, ZoneKind::Typed},
    {"System 34 (Main land)", 48},
    {"System 45 (Bornholm)", 49},
}};

/// The datum of identifier 1, 2, 3, …
inline constexpr std::array<std::string_view, 27> DatumTexts{"WGS84",
                                                             "ETRS89",
                                                             "OSGB36",
                                                             "CH1903",
                                                             "RT90",
                                                             "Ireland 65",
                                                             "Finland Hayford",
                                                             "LUREF",
                                                             "WGS72",
                                                             "AGD84",
                                                             "GDA94",
                                                             "MGI (Hermannskugel)",
                                                             "NZGD49",
                                                             "NZGD2000",
                                                             "NTF",
                                                             "BD72",
                                                             "ED50",
                                                             "Potsdam",
                                                             "NAD83",
                                                             "NAD27 (Alaska)",
                                                             "NAD27 (East)",
                                                             "NAD27 (Conus)",
                                                             "NAD27 (West)",
                                                             "Amersfoort",
                                                             "ROMA40",
                                                             "NGO48",
                                                             "ED50 Denmark"};
