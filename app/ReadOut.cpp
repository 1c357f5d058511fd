#include "app/ReadOut.h"

#include "base/CheckedNumbers.h"
#include "coordinates/QuorvantPosition.h"
#include "platform/modFields.h"

#include <cmath>
#include <numbers>

namespace {

constexpr int DegreeDecimals = 7;
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

/// With so many decimals, rounded half to even, and no group separators.
QString FixedText(double value, int decimals, QLocale locale) {
    const double scale = std::pow(10.0, decimals);
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    return locale.toString(RoundHalfEven(value * scale) / scale, 'f', decimals);
}

/// The angle without its sign: the hemisphere carries it.
QString AngleText(double degrees, AngleUnit unit, char hemisphere, const QLocale& locale) {
    const double angle = std::abs(degrees);
    const QString number = unit == AngleUnit::Degrees ? FixedText(angle, DegreeDecimals, locale)
                                                      : FixedText(Radians(angle), RadianDecimals, locale);
    return number + QLatin1Char(' ') + QLatin1Char(hemisphere);
}

} // namespace

QString GridReadOut(double easting, double northing, const QLocale& locale) {
    return QStringLiteral("(meters) Easting: ") + NumberText(easting, 2, locale) +
           QStringLiteral(" Northing: ") + NumberText(northing, 2, locale);
}

QString GeographicReadOut(double longitude, double latitude, AngleUnit unit, const QLocale& locale) {
    const QuorvantPosition position(WithoutTrace(longitude, unit), WithoutTrace(latitude, unit));
    return QStringLiteral("Longitude: ") +
           AngleText(longitude, unit, position.LongitudeHemisphere(), locale) +
           QStringLiteral(" Latitude: ") + AngleText(latitude, unit, position.LatitudeHemisphere(), locale);
}
