#include "app/ReadOut.h"

#include "coordinates/QuorvantPosition.h"
#include "platform/modFields.h"

#include <cmath>
#include <numbers>

namespace {

constexpr int RadianDecimals = 9;
constexpr double HalfOfLastDegreeDigit = 5e-8;
constexpr double HalfOfLastRadianDigit = 5e-10;

double Radians(double degrees) {
    return degrees * std::numbers::pi / 180.0;
}

/// What is shown as zero is zero, and so in the east and north: arithmetic may leave a trace of a sign.
double WithoutTrace(double degrees, AngleUnit unit) {
    const bool isZero = unit == AngleUnit::Degrees ? std::abs(degrees) < HalfOfLastDegreeDigit
                                                   : std::abs(Radians(degrees)) < HalfOfLastRadianDigit;
    return isZero ? 0.0 : degrees;
}

/// The angle without its sign: the hemisphere carries it.
QString AngleText(double degrees, const std::string& degreesText, AngleUnit unit, char hemisphere) {
    const QString number = unit == AngleUnit::Degrees
                               ? QString::fromStdString(degreesText)
                               : QString::number(std::abs(Radians(degrees)), 'f', RadianDecimals);
    return number + QLatin1Char(' ') + QLatin1Char(hemisphere);
}

} // namespace

QString GridReadOut(double easting, double northing, const QLocale& locale) {
    return QStringLiteral("(meters) Easting: ") + NumberText(easting, 2, locale) +
           QStringLiteral(" Northing: ") + NumberText(northing, 2, locale);
}

QString GeographicReadOut(double longitude, double latitude, AngleUnit unit) {
    const QuorvantPosition position(WithoutTrace(longitude, unit), WithoutTrace(latitude, unit));
    const QuorvantPosition unsignedPosition(std::abs(longitude), std::abs(latitude));
    return QStringLiteral("Longitude: ") +
           AngleText(longitude, unsignedPosition.LongitudeText(AngleFormat::DecimalDegrees), unit,
                     position.LongitudeHemisphere()) +
           QStringLiteral(" Latitude: ") +
           AngleText(latitude, unsignedPosition.LatitudeText(AngleFormat::DecimalDegrees), unit,
                     position.LatitudeHemisphere());
}
