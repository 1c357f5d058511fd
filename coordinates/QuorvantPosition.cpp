#include "coordinates/QuorvantPosition.h"

#include "base/CheckedNumbers.h"
#include "base/ComponentError.h"
#include "coordinates/EarthPosition.h"

#include <array>
#include <charconv>
#include <cmath>

namespace {

AngleParts Split(double angle) {
    const double magnitude = std::abs(angle);
    const double degrees = std::trunc(magnitude);
    const double minutes = (magnitude - degrees) * 60;
    AngleParts parts{static_cast<int>(degrees), static_cast<int>(minutes), 0};
    parts.seconds = (minutes - parts.minutes) * 60;
    // A fraction next to 1 may reach 60 by rounding in the products above.
    return parts.minutes >= 60 || parts.seconds >= 60 ? RoundSeconds(parts, 9) : parts;
}

/// True for the hemisphere of negative angles.
bool IsNegativeHemisphere(char hemisphere, char positive, char negative) {
    if (hemisphere != positive && hemisphere != negative)
        throw ComponentError(ErrorNumber::InvalidArgument,
                             std::string("The hemisphere must be ") + positive + " or " + negative + ".");
    return hemisphere == negative;
}

double Join(double degrees, double minutes, double seconds, bool negativeHemisphere) {
    const double magnitude = std::abs(degrees) + (minutes * 60 + seconds) / 3600;
    return std::signbit(degrees) != negativeHemisphere ? -magnitude : magnitude;
}

double WithSign(double angle, bool negativeHemisphere) {
    return negativeHemisphere ? -std::abs(angle) : std::abs(angle);
}

std::string FixedText(double value, int decimals) {
    std::array<char, 64> buffer{};
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                      std::chars_format::fixed, decimals);
    return {buffer.data(), result.ptr};
}

std::string AngleText(double angle, char hemisphere, AngleFormat format) {
    if (format == AngleFormat::DecimalDegrees)
        return FixedText(RoundHalfEven(angle * 1e7) / 1e7 + 0.0, 7);
    const AngleParts parts = RoundSeconds(Split(angle), 3);
    return std::to_string(parts.degrees) + "° " + std::to_string(parts.minutes) + "' " +
           FixedText(parts.seconds, 3) + "\" " + hemisphere;
}

} // namespace

AngleParts RoundSeconds(const AngleParts& parts, int decimals) {
    if (decimals < 0 || decimals > 9)
        throw ComponentError(ErrorNumber::InvalidArgument, "Seconds are rounded to 0 to 9 decimals.");
    const double factor = std::pow(10.0, decimals);
    AngleParts rounded = parts;
    rounded.seconds = RoundHalfEven(parts.seconds * factor) / factor;
    if (rounded.seconds >= 60) {
        rounded.seconds -= 60;
        ++rounded.minutes;
    }
    if (rounded.minutes >= 60) {
        rounded.minutes -= 60;
        ++rounded.degrees;
    }
    return rounded;
}

QuorvantPosition::QuorvantPosition(double longitude, double latitude) {
    SetLongitude(longitude);
    SetLatitude(latitude);
}

void QuorvantPosition::SetLongitude(double degrees) {
    StoreLongitude(degrees + 0.0); // the sign of a zero is arithmetic's, nobody has chosen it
}

void QuorvantPosition::SetLatitude(double degrees) {
    StoreLatitude(degrees + 0.0);
}

void QuorvantPosition::StoreLongitude(double degrees) {
    RequireOnEarth({degrees, 0});
    longitude_ = degrees;
}

void QuorvantPosition::StoreLatitude(double degrees) {
    RequireOnEarth({0, degrees});
    latitude_ = degrees;
}

char QuorvantPosition::LongitudeHemisphere() const {
    return std::signbit(longitude_) ? 'W' : 'E';
}

char QuorvantPosition::LatitudeHemisphere() const {
    return std::signbit(latitude_) ? 'S' : 'N';
}

AngleParts QuorvantPosition::LongitudeParts() const {
    return Split(longitude_);
}
AngleParts QuorvantPosition::LatitudeParts() const {
    return Split(latitude_);
}

void QuorvantPosition::SetLongitudeParts(double degrees, double minutes, double seconds, char hemisphere) {
    StoreLongitude(Join(degrees, minutes, seconds, IsNegativeHemisphere(hemisphere, 'E', 'W')));
}

void QuorvantPosition::SetLatitudeParts(double degrees, double minutes, double seconds, char hemisphere) {
    StoreLatitude(Join(degrees, minutes, seconds, IsNegativeHemisphere(hemisphere, 'N', 'S')));
}

void QuorvantPosition::SetLongitudeHemisphere(char hemisphere) {
    StoreLongitude(WithSign(longitude_, IsNegativeHemisphere(hemisphere, 'E', 'W')));
}

void QuorvantPosition::SetLatitudeHemisphere(char hemisphere) {
    StoreLatitude(WithSign(latitude_, IsNegativeHemisphere(hemisphere, 'N', 'S')));
}

std::string QuorvantPosition::LongitudeText(AngleFormat format) const {
    return AngleText(longitude_, LongitudeHemisphere(), format);
}

std::string QuorvantPosition::LatitudeText(AngleFormat format) const {
    return AngleText(latitude_, LatitudeHemisphere(), format);
}
