#pragma once

#include "coordinates/QuorvantDatum.h"

#include <array>
#include <cstdint>

/// A datum of the catalogue: its identifier and the nine numbers in the order of QuorvantDatum::Numbers.
struct DatumRow {
    std::int16_t identifier;
    QuorvantDatum::Numbers numbers;
};

// Ellipsoids: semi-major axis in metres and first eccentricity squared. Clarke 1866 and Clarke 1880 (IGN)
// are defined by their two axes (semi-minor 6356583.8 m and 6356515.0 m), not by a flattening.
struct Ellipsoid {
    double a;
    double e2;
};
inline constexpr Ellipsoid Wgs84{6378137, 0.006694379990141};
inline constexpr Ellipsoid Grs80{6378137, 0.006694380022901};
inline constexpr Ellipsoid Airy1830{6377563.396, 0.006670539999985};
inline constexpr Ellipsoid AiryModified{6377340.189, 0.006670539999985};
inline constexpr Ellipsoid Bessel1841{6377397.155, 0.006674372231802};
inline constexpr Ellipsoid BesselModified{6377492.018, 0.006674372231802};
inline constexpr Ellipsoid International1924{6378388, 0.006722670022333};
inline constexpr Ellipsoid Wgs72{6378135, 0.006694317778267};
inline constexpr Ellipsoid AustralianNational{6378160, 0.006694541854588};
inline constexpr Ellipsoid Clarke1880Ign{6378249.2, 0.006803487646300};
inline constexpr Ellipsoid Clarke1866{6378206.4, 0.006768657997291};

constexpr QuorvantDatum::Numbers Shift(const Ellipsoid& e, double dx, double dy, double dz, double rx = 0,
                                       double ry = 0, double rz = 0, double ppm = 0) {
    return {e.a, e.e2, dx, dy, dz, rx, ry, rz, ppm};
}

// The shifts are those of EPSG operations (named at the end of each row). Where EPSG lists the rotations in
// its coordinate-frame form, their signs are turned here: all rows have the position-vector sign.
// clang-format off
inline constexpr std::array<DatumRow, 27> DatumTable{{
    {1,  Shift(Wgs84, 0, 0, 0)},                                                          // WGS84
    {2,  Shift(Grs80, 0, 0, 0)},                                                          // ETRS89, 1149
    {3,  Shift(Airy1830, 446.448, -125.157, 542.06, 0.15, 0.247, 0.842, -20.489)},        // OSGB36, 1314
    {4,  Shift(Bessel1841, 674.374, 15.056, 405.346)},                                    // CH1903, 1766
    {5,  Shift(Bessel1841, 414.1, 41.3, 603.1, -0.855, 2.141, -7.023, 0)},                // RT90, 1896
    {6,  Shift(AiryModified, 482.5, -130.6, 564.6, -1.042, -0.214, -0.631, 8.15)},        // Ireland 65, 1641
    {7,  Shift(International1924, -96.062, -82.428, -121.753, 4.801, 0.345, -1.376, 1.496)}, // KKJ, 10099
    {8,  Shift(International1924, -189.6806, 18.3463, -42.7695, -0.33746, -3.09264, 2.53861, 0.4598)}, // LUREF, 5486
    {9,  Shift(Wgs72, 0, 0, 4.5, 0, 0, 0.554, 0.219)},                                    // WGS72, 1238
    {10, Shift(AustralianNational, -117.763, -51.51, 139.061, 0.292, 0.443, 0.277, -0.191)}, // AGD84, 1669
    {11, Shift(Grs80, 0, 0, 0)},                                                          // GDA94, 1150
    {12, Shift(Bessel1841, 577.326, 90.129, 463.919, 5.137, 1.474, 5.297, 2.4232)},       // MGI (Austria), 1618
    {13, Shift(International1924, 59.47, -5.04, 187.44, 0.47, -0.1, 1.024, -4.5993)},     // NZGD49, 1564
    {14, Shift(Grs80, 0, 0, 0)},                                                          // NZGD2000, 1565
    {15, Shift(Clarke1880Ign, -168, -60, 320)},                                           // NTF, 1193
    {16, Shift(International1924, -106.8686, 52.2978, -103.7239, 0.3366, -0.457, 1.8422, -1.2747)}, // BD72, 15929
    {17, Shift(International1924, -87, -98, -121)},                                       // ED50, 1133
    {18, Shift(Bessel1841, 598.1, 73.7, 418.2, 0.202, 0.045, -2.455, 6.7)},               // Potsdam, 1777
    {19, Shift(Grs80, 0, 0, 0)},                                                          // NAD83, 1188
    {20, Shift(Clarke1866, -5, 135, 172)},                                                // NAD27 Alaska, 1176
    {21, Shift(Clarke1866, -9, 161, 179)},                                                // NAD27 East, 1174
    {22, Shift(Clarke1866, -8, 160, 176)},                                                // NAD27 Conus, 1173
    {23, Shift(Clarke1866, -8, 159, 175)},                                                // NAD27 West, 1175
    {24, Shift(Bessel1841, 565.4171, 50.3319, 465.5524, -0.3989573882, 0.3439878174, -1.87740164, 4.0725)}, // Amersfoort, 4833
    {25, Shift(International1924, -104.1, -49.1, -9.9, 0.971, -2.917, 0.714, -11.68)},    // ROMA40, 1660
    {26, Shift(BesselModified, 278.3, 93, 474.5, 7.889, 0.05, -6.61, 6.21)},              // NGO48, 1654
    {27, Shift(International1924, -81.1, -89.4, -115.8, 0.485, 0.024, 0.413, -0.54)},     // ED50 Denmark, 1627
}};
// clang-format on

/// The numbers of an identifier of the table; any other identifier does not compile.
consteval QuorvantDatum::Numbers DatumNumbers(std::int16_t identifier) {
    return DatumTable.at(static_cast<std::size_t>(identifier - 1)).numbers;
}

// Datums that only a grid has, not the catalogue. Hawaii's and Puerto Rico's state-plane zones of 1927 are
// on datums of their own: with the shift of the 48 states positions would be off by 574 m and 291 m.
inline constexpr auto OldHawaiianNumbers = Shift(Clarke1866, 61, -285, -181);  // 15824
inline constexpr auto PuertoRico1927Numbers = Shift(Clarke1866, 11, 72, -101); // 1893
/// The datum of the Danish polynomials: ED50 Denmark with more digits (the rounded set is 4 cm off).
inline constexpr auto DanishTd32Numbers =
    Shift(International1924, -81.0703, -89.3603, -115.7526, 0.48488, 0.02436, 0.41321, -0.540645);
