#include "app/ReadOut.h"

#include "coordinates/QuorvantPosition.h"
#include "platform/modFields.h"

#include <cmath>
#include <numbers>

namespace {

/// The angle without its sign: the hemisphere carries it.
QString AngleText(double degrees, const std::string& degreesText, AngleUnit unit, char hemisphere) {
    const QString number = unit == AngleUnit::Degrees
                               ? QString::fromStdString(degreesText)
                               : QString::number(std::abs(degrees) * std::numbers::pi / 180.0, 'f', 9);
    return number + QLatin1Char(' ') + QLatin1Char(hemisphere);
}

} // namespace

QString GridReadOut(double easting, double northing, const QLocale& locale) {
    return QStringLiteral("(meters) Easting: ") + NumberText(easting, 2, locale) +
           QStringLiteral(" Northing: ") + NumberText(northing, 2, locale);
}

QString GeographicReadOut(double longitude, double latitude, AngleUnit unit) {
    const QuorvantPosition position(longitude, latitude);
    const QuorvantPosition unsignedPosition(std::abs(longitude), std::abs(latitude));
    return QStringLiteral("Longitude: ") +
           AngleText(longitude, unsignedPosition.LongitudeText(AngleFormat::DecimalDegrees), unit,
                     position.LongitudeHemisphere()) +
           QStringLiteral(" Latitude: ") +
           AngleText(latitude, unsignedPosition.LatitudeText(AngleFormat::DecimalDegrees), unit,
                     position.LatitudeHemisphere());
}
