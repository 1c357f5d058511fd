#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Numbers as text, always with a decimal point, whatever locale the user or the process has set.

/// The shortest text that reads back as the same double, at most 17 significant digits.
std::string NumberToText(double value);

/// The whole text as a finite double; blanks, tabs and a carriage return around it are allowed, an empty
/// text, "nan", "inf", hexadecimal and a decimal comma are not. A leading "+" is accepted.
std::optional<double> TextToNumber(std::string_view text);

/// The whole text as a decimal whole number of 32 bits; nothing beside its digits and a leading "-" is
/// allowed.
std::optional<std::int32_t> TextToWholeNumber(std::string_view text);
