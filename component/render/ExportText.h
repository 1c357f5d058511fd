#pragma once

#include <string>
#include <string_view>

/// The text with every byte that is no UTF-8 replaced by U+FFFD: names come from files that nobody vouches
/// for.
std::string ValidUtf8(std::string_view text);

/// The text as it may stand in XML or HTML, between tags or in quotes. Control characters but
/// tab and line feed, which XML does not have, become U+FFFD.
std::string MarkupText(std::string_view text);
