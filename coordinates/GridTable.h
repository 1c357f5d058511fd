#pragma once

#include "coordinates/DatumTable.h"
#include "coordinates/GridBuilders.h"

#include <array>
#include <cstdint>

/// A grid of the catalogue that needs no zone, or one zone of a grid whose zones are picked from a list.
struct GridRow {
    std::int16_t identifier;
    QuorvantDatum::Numbers datum;
    GridNumbers numbers;
};

/// A grid whose zone is typed as a number from 1 to 60: transverse Mercator on the equator, the central
/// meridian at `lonStep` × zone + `lonBase`, the false easting `eastingStep` × zone + 500000.
struct TypedZoneRow {
    std::int16_t identifier;
    std::int16_t datum; ///< identifier of the grid's own datum
    double lonStep;
    double lonBase;
    double k0;
    double eastingStep;
    double falseNorthing;
};

/// Longitude of the Paris meridian (2.5969213 grads), on which the French zones of NTF stand.
inline constexpr double ParisMeridian = 2.33722917;
/// Longitude of the Oslo meridian, from which the Norwegian axes are counted.
inline constexpr double OsloMeridian = Dms(10, 43, 22.5);
/// Longitude of the Ferro meridian, from which the Austrian strips are counted.
inline constexpr double FerroMeridian = -Dm(17, 40);

// Identifiers 5, 8 and 46 stand for nothing. The Austrian northings are printed less 5000 km.
// clang-format off
inline constexpr std::array<GridRow, 34> GridTable{{
    {3,  DatumNumbers(3),  SingleGrid(ProjectionMethod::TransverseMercator, 49, -2, 0.9996012717, 400000, -100000)},   // British National Grid
    {4,  DatumNumbers(6),  SingleGrid(ProjectionMethod::TransverseMercator, 53.5, -8, 1.000035, 200000, 250000)},      // Irish National Grid
    {6,  DatumNumbers(5),  SingleGrid(ProjectionMethod::TransverseMercator, 0, Dms(15, 48, 29.8), 1, 1500000, 0)},     // Swedish Grid, 2.5 gon V
    {7,  DatumNumbers(4),  SingleGrid(ProjectionMethod::SwissObliqueMercator, Dms(46, 57, 8.66), Dms(7, 26, 22.5), 1, 600000, 200000)}, // Swiss Grid
    {9,  DatumNumbers(7),  TransverseMercatorGrid(1, 0, 21, 1, 1500000, 0)},                                           // Finnish Grid
    {10, DatumNumbers(7),  TransverseMercatorGrid(2, 0, 24, 1, 2500000, 0)},
    {11, DatumNumbers(7),  TransverseMercatorGrid(3, 0, 27, 1, 3500000, 0)},
    {12, DatumNumbers(7),  TransverseMercatorGrid(4, 0, 30, 1, 4500000, 0)},
    {14, DatumNumbers(8),  SingleGrid(ProjectionMethod::TransverseMercator, Dm(49, 50), Dm(6, 10), 1, 80000, 100000)}, // Luxembourg Grid
    {17, DatumNumbers(12), TransverseMercatorGrid(1, 0, 28 + FerroMeridian, 1, 150000, -5000000)},                     // Bundesmeldenetz
    {18, DatumNumbers(12), TransverseMercatorGrid(2, 0, 31 + FerroMeridian, 1, 450000, -5000000)},
    {19, DatumNumbers(12), TransverseMercatorGrid(3, 0, 34 + FerroMeridian, 1, 750000, -5000000)},
    {20, DatumNumbers(14), SingleGrid(ProjectionMethod::TransverseMercator, 0, 173, 0.9996, 1600000, 10000000)},       // NZ Transverse Mercator
    {21, DatumNumbers(13), SingleGrid(ProjectionMethod::NewZealandMapGrid, -41, 173, 1, 2510000, 6023150)},            // NZ Map Grid
    {22, DatumNumbers(16), LambertGrid(0, 90, Dms(4, 22, 2.952), Dms(51, 10, 0.00204), Dms(49, 50, 0.00204), 1, 150000.013, 5400088.438)}, // Belgium Grid
    {23, DatumNumbers(15), LambertGrid(1, 49.5, ParisMeridian, 49.5, 49.5, 0.999877341, 600000, 200000)},              // French Grid (ntf)
    {24, DatumNumbers(15), LambertGrid(2, 46.8, ParisMeridian, 46.8, 46.8, 0.99987742, 600000, 200000)},
    {25, DatumNumbers(15), LambertGrid(3, 44.1, ParisMeridian, 44.1, 44.1, 0.999877499, 600000, 200000)},
    {26, DatumNumbers(15), LambertGrid(4, 42.165, ParisMeridian, 42.165, 42.165, 0.99994471, 234.358, 185861.369)},
    {27, DatumNumbers(2),  LambertGrid(0, 46.5, 3, 49, 44, 1, 700000, 6600000)},                                       // French Grid (rgf93)
    {34, DatumNumbers(24), SingleGrid(ProjectionMethod::ObliqueStereographic, Dms(52, 9, 22.178), Dms(5, 23, 15.5), 0.9999079, 155000, 463000)}, // Dutch Grid
    {35, DatumNumbers(25), TransverseMercatorGrid(1, 0, 9, 0.9996, 1500000, 0)},                                       // Gauss Boaga
    {36, DatumNumbers(25), TransverseMercatorGrid(2, 0, 15, 0.9996, 2520000, 0)},
    {37, DatumNumbers(26), TransverseMercatorGrid(1, 58, OsloMeridian - Dm(4, 40), 1, 0, 0)},                          // Norwegian Grid
    {38, DatumNumbers(26), TransverseMercatorGrid(2, 58, OsloMeridian - Dm(2, 20), 1, 0, 0)},
    {39, DatumNumbers(26), TransverseMercatorGrid(3, 58, OsloMeridian, 1, 0, 0)},
    {40, DatumNumbers(26), TransverseMercatorGrid(4, 58, OsloMeridian + Dm(2, 30), 1, 0, 0)},
    {41, DatumNumbers(26), TransverseMercatorGrid(5, 58, OsloMeridian + Dm(6, 10), 1, 0, 0)},
    {42, DatumNumbers(26), TransverseMercatorGrid(6, 58, OsloMeridian + Dm(10, 10), 1, 0, 0)},
    {43, DatumNumbers(26), TransverseMercatorGrid(7, 58, OsloMeridian + Dm(14, 10), 1, 0, 0)},
    {44, DatumNumbers(26), TransverseMercatorGrid(8, 58, OsloMeridian + Dm(18, 20), 1, 0, 0)},
    {45, DatumNumbers(15), LambertGrid(0, 46.8, ParisMeridian, 46.8, 46.8, 0.99987742, 600000, 2200000)},              // France Lambert 2 Etendu
    {48, DanishTd32Numbers, DanishGrid(0)},                                                                          // System 34
    {49, DanishTd32Numbers, DanishGrid(3)},                                                                          // System 45
}};

/// The zones of each of them.
inline constexpr std::int32_t LowestTypedZone = 1;
inline constexpr std::int32_t HighestTypedZone = 60;

inline constexpr std::array<TypedZoneRow, 10> TypedZoneTable{{
    {1,  1,  6, -183, 0.9996, 0, 0},        // UTM North (wgs84)
    {2,  1,  6, -183, 0.9996, 0, 10000000}, // UTM South (wgs84)
    {13, 2,  6, -183, 0.9996, 0, 0},        // UTM (etrs89)
    {15, 10, 6, -183, 0.9996, 0, 10000000}, // Australian Map Grid (amg84)
    {16, 11, 6, -183, 0.9996, 0, 10000000}, // Map Grid of Australia (mga94)
    {28, 17, 6, -183, 0.9996, 0, 0},        // UTM (ed50)
    {29, 18, 3, 0,    1, 1000000, 0},       // German Grid (Potsdam): the strip's number leads the easting
    {32, 22, 6, -183, 0.9996, 0, 0},        // UTM (nad27); the zones of Alaska have the datum 20
    {33, 19, 6, -183, 0.9996, 0, 0},        // UTM (nad83)
    {47, 27, 6, -183, 0.9996, 0, 0},        // UTM (ed50 Denmark)
}};
// clang-format on
