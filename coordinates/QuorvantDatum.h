#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

/// A geodetic datum as bare numbers: the ellipsoid and the seven-parameter shift from the datum to WGS84.
/// Rotations have the position-vector sign (EPSG method 9606).
class QuorvantDatum {
public:
    /// In this order: SemiMajorAxis (metres), e2 (first eccentricity squared), DeltaX, DeltaY, DeltaZ
    /// (metres), RotX, RotY, RotZ (arc-seconds), ScaleFactor (parts per million, 0 = no change).
    using Numbers = std::array<double, 9>;

    QuorvantDatum() = default; ///< WGS84
    explicit QuorvantDatum(const Numbers& numbers) : numbers_(numbers) {}

    double SemiMajorAxis() const { return numbers_[0]; }
    double e2() const { return numbers_[1]; }
    double DeltaX() const { return numbers_[2]; }
    double DeltaY() const { return numbers_[3]; }
    double DeltaZ() const { return numbers_[4]; }
    double RotX() const { return numbers_[5]; }
    double RotY() const { return numbers_[6]; }
    double RotZ() const { return numbers_[7]; }
    double ScaleFactor() const { return numbers_[8]; }

    /// The property of exactly this name ("SemiMajorAxis", "e2", "DeltaX", … "ScaleFactor"); nothing for any
    /// other text.
    std::optional<double> Property(std::string_view name) const;

    const Numbers& AsNumbers() const { return numbers_; }
    bool operator==(const QuorvantDatum&) const = default;

private:
    Numbers numbers_{6378137.0, 0.006694379990141, 0, 0, 0, 0, 0, 0, 0};
};

/// The datum of an identifier of the catalogue (1 to 27); UnknownDatum for any other number.
QuorvantDatum MakeDatum(std::int16_t identifier);
