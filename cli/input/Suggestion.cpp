#include "cli/input/Suggestion.h"

#include <algorithm>
#include <cstddef>

namespace {

/// Longer texts are not compared: nobody mistypes them.
constexpr std::size_t LongestCompared = 200;

char Lower(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

/// One row of the table of distances, and the two rows before it.
struct Rows {
    std::vector<std::size_t> before, above, row;
};

void FillRow(Rows& rows, std::string_view from, std::string_view to, std::size_t i) {
    const auto same = [&](std::size_t a, std::size_t b) { return Lower(from[a - 1]) == Lower(to[b - 1]); };
    rows.row[0] = i;
    for (std::size_t j = 1; j <= to.size(); ++j) {
        rows.row[j] =
            std::min({rows.above[j] + 1, rows.row[j - 1] + 1, rows.above[j - 1] + (same(i, j) ? 0 : 1)});
        if (i > 1 && j > 1 && same(i, j - 1) && same(i - 1, j))
            rows.row[j] = std::min(rows.row[j], rows.before[j - 2] + 1);
    }
}

/// How many letters must be changed, put in, left out or exchanged with their neighbour.
std::size_t Distance(std::string_view from, std::string_view to) {
    Rows rows;
    for (auto* row : {&rows.before, &rows.above, &rows.row})
        row->resize(to.size() + 1);
    for (std::size_t j = 0; j <= to.size(); ++j)
        rows.above[j] = j;
    for (std::size_t i = 1; i <= from.size(); ++i) {
        FillRow(rows, from, to, i);
        std::swap(rows.before, rows.above);
        std::swap(rows.above, rows.row);
    }
    return rows.above[to.size()];
}

/// One mistake in three letters is the most that is still a mistake.
std::size_t MostMistakes(std::string_view typed) {
    return std::max<std::size_t>(1, typed.size() / 3);
}

bool StartsAlike(std::string_view typed, std::string_view known) {
    return typed.size() >= 3 && typed.size() < known.size() &&
           Distance(typed, known.substr(0, typed.size())) == 0;
}

} // namespace

std::string DidYouMean(std::string_view typed, const std::vector<std::string>& known) {
    const std::string* nearest = nullptr;
    std::size_t least = MostMistakes(typed) + 1;
    for (const std::string& candidate : known) {
        if (std::max(typed.size(), candidate.size()) > LongestCompared)
            continue;
        const std::size_t distance = StartsAlike(typed, candidate) ? 1 : Distance(typed, candidate);
        if (distance < least && distance < std::max<std::size_t>(2, candidate.size())) {
            least = distance;
            nearest = &candidate;
        }
    }
    return nearest == nullptr ? "." : "; did you mean '" + *nearest + "'?";
}
