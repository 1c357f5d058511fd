#pragma once

#include <QString>

#include <array>
#include <cstdint>
#include <functional>

/// Draws from the uniform distribution in [0, 1).
using UniformDraw = std::function<double()>;

/// The mask with its marks replaced, of the same length. Marks, case-sensitive: "?" a character of code 1 to
/// 128 of the single-byte character set of Windows (128 is the euro sign), "#" a digit, "A" a letter of
/// either case, "N" a letter or digit, "H" an upper-case hexadecimal digit. Other characters stay. One draw
/// for each mark, from the first to the last.
QString RandomText(const QString& mask, const UniformDraw& draw);

/// A uniform generator that is worth a key: each seed is hashed from the system's secure generator and the
/// clock, and the draws are a key stream of it.
class SeededGenerator {
public:
    SeededGenerator() { Seed(); }

    /// Starts anew. Failed when the system's secure generator is not available.
    void Seed();
    /// In [0, 1), with 53 random bits.
    double operator()();

private:
    std::array<unsigned char, 32> seed_{};
    std::uint64_t draws_ = 0; ///< since the seed
};
