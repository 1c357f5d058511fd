#pragma once

#include <QLocale>
#include <QString>

// Numbers are written as the user writes them, so that what is read out can be typed into a field.

/// How longitude and latitude are read out.
enum class AngleUnit { Degrees, Radians };

/// "(meters) Easting: 500000.12 Northing: 6173000", each rounded half to even to two decimals.
QString GridReadOut(double easting, double northing, const QLocale& locale = QLocale::system());

/// "Longitude: 12.5683333 E Latitude: 55.6761111 N": decimal degrees with seven decimals, or radians with
/// nine, and the hemisphere.
QString GeographicReadOut(double longitude, double latitude, AngleUnit unit,
                          const QLocale& locale = QLocale::system());
