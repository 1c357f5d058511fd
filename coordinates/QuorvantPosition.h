#pragma once

#include <string>

/// An angle without its sign: whole degrees, whole minutes below 60, seconds below 60. The hemisphere carries
/// the sign.
struct AngleParts {
    int degrees = 0;
    int minutes = 0;
    double seconds = 0;

    bool operator==(const AngleParts&) const = default;
};

/// How a position is written as text.
enum class AngleFormat { DecimalDegrees, DegreesMinutesSeconds };

/// The parts with seconds rounded half to even to `decimals` (0 to 9) places. 59.9996 seconds rounded to
/// three places carry into the minutes, and those into the degrees.
AngleParts RoundSeconds(const AngleParts& parts, int decimals);

/// A geographic position that can be read and set in signed decimal degrees (east and north positive) and in
/// degrees, minutes and seconds with a hemisphere: 'N' or 'S', 'E' or 'W'. 0 in decimal degrees is north and
/// east; a hemisphere that is set keeps also at 0, where it waits for the angle that is still to come.
///
/// Parts are given unsigned. A set call normalises what it is given: minutes and seconds of 60 and more
/// carry, negative minutes and seconds borrow, and negative degrees turn the whole angle into the other
/// hemisphere. Latitudes beyond ±90 and longitudes beyond ±360 degrees and numbers that are not finite are
/// refused with OutsideArea, other hemisphere letters with InvalidArgument; the position is then as before.
class QuorvantPosition {
public:
    QuorvantPosition() = default;
    QuorvantPosition(double longitude, double latitude);

    double Longitude() const { return longitude_ + 0.0; } // never -0
    double Latitude() const { return latitude_ + 0.0; }
    void SetLongitude(double degrees);
    void SetLatitude(double degrees);

    AngleParts LongitudeParts() const;
    AngleParts LatitudeParts() const;
    void SetLongitudeParts(double degrees, double minutes, double seconds, char hemisphere);
    void SetLatitudeParts(double degrees, double minutes, double seconds, char hemisphere);

    char LongitudeHemisphere() const;
    char LatitudeHemisphere() const;
    /// Keeps the angle and moves it to the hemisphere.
    void SetLongitudeHemisphere(char hemisphere);
    void SetLatitudeHemisphere(char hemisphere);

    /// Seven decimals ("12.5000000") or degrees, minutes and seconds with three decimals and the hemisphere
    /// ("12° 30' 0.000\" E"); always with a decimal point.
    std::string LongitudeText(AngleFormat format) const;
    std::string LatitudeText(AngleFormat format) const;

private:
    void StoreLongitude(double degrees);
    void StoreLatitude(double degrees);

    // The sign of a zero is its hemisphere.
    double longitude_ = 0;
    double latitude_ = 0;
};
