#pragma once

#include <string>
#include <string_view>

/// A new random identifier (UUID version 4 from the system's secure generator) as 36 upper-case characters,
/// 8-4-4-4-12 hexadecimal digits with hyphens, without braces.
std::string CreateGUID();

/// The loose test of what a user typed: after blanks at both ends are dropped, 32 to 36 characters, each a
/// hexadecimal digit of either case or a hyphen. Where the hyphens stand is not checked: identifiers that
/// other programs made without them are kept.
bool IsGUIDText(std::string_view text);
