#pragma once

#include "base/ComponentError.h"

#include <cmath>
#include <concepts>
#include <cstdint>
#include <limits>
#include <utility>

/// Rounds to the nearest whole number, ties to even (10.5 gives 10, 11.5 gives 12). Relies on the default
/// floating-point rounding direction, which this program never changes.
inline double RoundHalfEven(double value) {
    return std::nearbyint(value);
}

/// The value as a narrower integer, or ErrorNumber::Overflow when it does not fit.
template <std::integral To, std::integral From>
constexpr To CheckedNarrow(From value) {
    if (!std::in_range<To>(value))
        throw ComponentError(ErrorNumber::Overflow, "A number is too large.");
    return static_cast<To>(value);
}

/// The value rounded half to even as a 16- or 32-bit integer; ErrorNumber::Overflow when it does not fit or
/// is not a number.
template <std::signed_integral To>
To CheckedRound(double value) {
    const double rounded = RoundHalfEven(value);
    // Written so that NaN fails too.
    if (!(rounded >= static_cast<double>(std::numeric_limits<To>::min()) &&
          rounded <= static_cast<double>(std::numeric_limits<To>::max())))
        throw ComponentError(ErrorNumber::Overflow, "A number is too large.");
    return static_cast<To>(rounded);
}

/// a + b in 16- or 32-bit arithmetic; ErrorNumber::Overflow instead of a wrap.
template <std::signed_integral T>
requires(sizeof(T) <= 4) constexpr T CheckedAdd(T a, T b) {
    return CheckedNarrow<T>(std::int64_t{a} + std::int64_t{b});
}
