#pragma once

#include <QString>

#include <algorithm>
#include <iterator>

/// The text without blanks at its ends. Blanks are spaces only: Qt's own trimming takes tabs and line ends
/// along.
inline QString WithoutOuterBlanks(const QString& text) {
    const auto isBlank = [](QChar character) { return character == u' '; };
    const auto first = std::find_if_not(text.begin(), text.end(), isBlank);
    const auto last = std::find_if_not(text.rbegin(), std::make_reverse_iterator(first), isBlank);
    return QString(first, last.base() - first);
}
