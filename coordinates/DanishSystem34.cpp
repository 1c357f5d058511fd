#include "coordinates/DanishSystem34.h"

#include "base/ComponentError.h"
#include "coordinates/Projection.h"

#include <array>
#include <cmath>

namespace {

/// The mapping agency's own bound for there and back, in metres.
constexpr double LargestClosure = 0.04;

/// Zealand's system holds east of `longitude` below the latitude `top`.
struct Band {
    double top;
    double longitude;
};
constexpr std::array<Band, 6> Bands{
    {{54.95, 10.85}, {55.30, 11.02}, {55.60, 10.95}, {55.95, 10.78}, {56.50, 11.10}, {56.85, 11.30}}};
constexpr double EasternLimit = 13.5;

const DanishPolynomials& PolynomialsOf(DanishSystem system) {
    switch (system) {
    case DanishSystem::Jutland:
        return JutlandPolynomials();
    case DanishSystem::Zealand:
        return ZealandPolynomials();
    case DanishSystem::Bornholm:
        return BornholmPolynomials();
    }
    throw ComponentError(ErrorNumber::UnknownZone, "There is no such Danish system.");
}

/// The sum over i and j of c[i][j]·outer^i·inner^j, by Horner's rule from the highest powers down.
double Evaluate(std::span<const double> coefficients, int degree, double outer, double inner) {
    double sum = 0;
    std::size_t next = coefficients.size();
    for (int i = degree; i >= 0; --i) {
        double row = 0;
        for (int j = degree - i; j >= 0; --j)
            row = row * inner + coefficients[--next];
        sum = sum * outer + row;
    }
    return sum;
}

[[noreturn]] void ThrowOutside() {
    throw ComponentError(ErrorNumber::OutsideArea, "The position lies outside the area of the Danish grid.");
}

EastNorth Apply(const DanishPolynomials& system, const DanishDirection& direction, const EastNorth& input) {
    const double e = input.easting - direction.originFirst;
    const double n = input.northing - direction.originSecond;
    // Written so that NaN fails too.
    if (!(std::abs(e) <= system.rangeFirst && std::abs(n) <= system.rangeSecond))
        ThrowOutside();
    return {Evaluate(direction.u, system.degree, n, e), Evaluate(direction.v, system.degree, e, n)};
}

EastNorth ApplyChecked(const DanishPolynomials& system, const DanishDirection& there,
                       const DanishDirection& back, const EastNorth& input) {
    const EastNorth output = Apply(system, there, input);
    const EastNorth again = Apply(system, back, output);
    if (!(std::hypot(again.easting - input.easting, again.northing - input.northing) <= LargestClosure))
        ThrowOutside();
    return output;
}

} // namespace

std::optional<DanishSystem> ChooseSystem34(const LonLat& position) {
    if (position.longitude > EasternLimit)
        return std::nullopt;
    for (const Band& band : Bands) {
        if (position.latitude < band.top)
            return position.longitude > band.longitude ? DanishSystem::Zealand : DanishSystem::Jutland;
    }
    return DanishSystem::Jutland;
}

EastNorth DanishFromUtm32(DanishSystem system, const EastNorth& utm) {
    const DanishPolynomials& polynomials = PolynomialsOf(system);
    return ApplyChecked(polynomials, polynomials.toGrid, polynomials.fromGrid, utm);
}

EastNorth DanishToUtm32(DanishSystem system, const EastNorth& grid) {
    const DanishPolynomials& polynomials = PolynomialsOf(system);
    return ApplyChecked(polynomials, polynomials.fromGrid, polynomials.toGrid, grid);
}
