#include "catalogue/modGadgets.h"

#include "base/ComponentError.h"

#include <cmath>

namespace {

/// Metres per unit, in the order of Units. The U.S. foot is the eight-decimal constant on purpose, not
/// 1200/3937: results must match it.
constexpr std::array<double, 4> MetersPerUnit{1, 0.9144, 0.30480061, 0.3048};

/// 0 for a text that is no unit.
double FactorOf(std::string_view unit) {
    for (std::size_t i = 0; i < Units.size(); ++i) {
        if (Units[i] == unit)
            return MetersPerUnit[i];
    }
    return 0;
}

double Finite(double value) {
    if (!std::isfinite(value))
        throw ComponentError(ErrorNumber::Overflow, "The length is too large for this unit.");
    return value;
}

} // namespace

double MetersToUnit(double meters, std::string_view unit) {
    const double factor = FactorOf(unit);
    return factor == 0 ? 0 : Finite(meters / factor);
}

double UnitToMeters(double value, std::string_view unit) {
    const double factor = FactorOf(unit);
    return factor == 0 ? 0 : Finite(value * factor);
}
