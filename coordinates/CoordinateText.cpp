#include "coordinates/CoordinateText.h"

#include "base/NumberText.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr double LatitudeLimit = 90;
constexpr double LongitudeLimit = 360;

/// Stands for every degree sign; small letters have become large ones by then.
constexpr char Degree = 'd';
constexpr char Minute = '\'';
constexpr char Second = '"';

/// A value together with the letter that stood at it, or a zero, and of how many numbers it is made.
struct Lettered {
    double value = 0;
    char letter = 0;
    int numbers = 0;
};

/// Both halves of a pair in the order in which they stand.
struct Halves {
    std::string first;
    std::string second;
};

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool IsDecimalSign(char c) {
    return c == '.' || c == ',';
}

/// Letters of other alphabets too: what begins beyond ASCII stands for no number.
bool IsLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (static_cast<unsigned char>(c) & 0x80) != 0;
}

bool IsEastWest(char letter) {
    return letter == 'E' || letter == 'W';
}

bool IsNorthSouth(char letter) {
    return letter == 'N' || letter == 'S';
}

// One way of writing
// -----------------------------------------------------------------------------------------

/// The many ways to write degrees, minutes, seconds, minus and blank.
constexpr std::pair<std::string_view, std::string_view> SameSigns[] = {{"°", "d"},  {"º", "d"}, {"′", "'"},
                                                                       {"’", "'"},  {"´", "'"}, {"″", "\""},
                                                                       {"”", "\""}, {"−", "-"}, {"''", "\""}};

void Replace(std::string& text, std::string_view sign, std::string_view other) {
    for (std::size_t at = 0; (at = text.find(sign, at)) != std::string::npos; at += other.size())
        text.replace(at, sign.size(), other);
}

/// Large letters, one blank where there were several, none at the ends.
std::string Unified(std::string_view text) {
    std::string result;
    for (const char c : text) {
        const bool isBlank = c == ' ' || (c >= '\t' && c <= '\r');
        if (isBlank && (result.empty() || result.back() == ' '))
            continue;
        result += isBlank ? ' ' : c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    }
    if (result.ends_with(' '))
        result.pop_back();
    for (const auto& [sign, same] : SameSigns)
        Replace(result, sign, same);
    return result;
}

// What a text holds, read from its beginning
// -----------------------------------------------------------------

/// Passes over parts of a text.
class Cursor {
public:
    explicit Cursor(std::string_view text) : rest_(text) {}

    bool AtEnd() const { return rest_.empty(); }
    std::string_view Rest() const { return rest_; }

    bool Skip(char c) {
        if (!rest_.starts_with(c))
            return false;
        rest_.remove_prefix(1);
        return true;
    }
    /// A plus or a minus, or nothing.
    std::string_view TakeSign() { return Take(rest_.starts_with('+') || rest_.starts_with('-') ? 1 : 0); }
    /// Digits, which may have a decimal sign and more digits behind them.
    std::string_view TakeNumber() {
        std::size_t length = Digits(0);
        if (length > 0 && length < rest_.size() && IsDecimalSign(rest_[length]))
            length = Digits(length + 1);
        return Take(length);
    }

private:
    /// Where digits that begin there end.
    std::size_t Digits(std::size_t from) const {
        while (from < rest_.size() && IsDigit(rest_[from]))
            ++from;
        return from;
    }
    std::string_view Take(std::size_t length) {
        const std::string_view taken = rest_.substr(0, length);
        rest_.remove_prefix(length);
        return taken;
    }

    std::string_view rest_;
};

/// Whether nothing is left but the unit's sign, which may be left out.
bool EndsWith(Cursor cursor, char sign) {
    cursor.Skip(' ');
    cursor.Skip(sign);
    return cursor.AtEnd();
}

/// Passes over what parts a number from the next one: the unit's sign, with a blank at either side or none,
/// or a blank alone.
bool SkipUnit(Cursor& cursor, char sign) {
    Cursor ahead = cursor;
    const bool blank = ahead.Skip(' ');
    if (ahead.Skip(sign)) {
        ahead.Skip(' ');
    } else if (!blank) {
        return false;
    }
    cursor = ahead;
    return true;
}

// Cutting a text in two
// --------------------------------------------------------------------------------------

/// Where the letters are: the second half begins at its leading letter, or behind the first half's trailing
/// one.
std::optional<Halves> SplitAtLetters(const std::string& text) {
    const auto letterFrom = [&text](std::size_t from) { return text.find_first_of("NSEW", from); };
    const std::size_t first = letterFrom(0);
    if (first == std::string::npos)
        return std::nullopt;
    const std::size_t cut = first == 0 ? letterFrom(1) : first + 1;
    if (cut >= text.size())
        return std::nullopt;
    return Halves{text.substr(0, cut), text.substr(cut)};
}

/// What a blank alone may part.
enum class AtBlank { Nothing, Decimals, Lengths };

bool HasDecimals(const std::string& half) {
    for (std::size_t at = 1; at + 1 < half.size(); ++at)
        if (IsDecimalSign(half[at]) && IsDigit(half[at - 1]) && IsDigit(half[at + 1]))
            return true;
    return false;
}

/// "617 300": one number as many countries group it.
bool IsGrouped(const Halves& halves) {
    Cursor first(halves.first), second(halves.second);
    first.TakeSign();
    const std::string_view thousands = first.TakeNumber(), rest = second.TakeNumber();
    const std::size_t digits = std::min(rest.find_first_of(".,"), rest.size());
    return first.AtEnd() && second.AtEnd() && !thousands.empty() && thousands.size() <= 3 &&
           std::ranges::all_of(thousands, IsDigit) && digits == 3;
}

/// The text in two at its only separator; nothing where there are several.
std::optional<Halves> SplitAt(std::string_view separator, const std::string& text) {
    const std::size_t at = text.find(separator);
    if (at == std::string::npos || text.find(separator, at + separator.size()) != std::string::npos)
        return std::nullopt;
    return Halves{text.substr(0, at), text.substr(at + separator.size())};
}

/// Before the number that belongs to the second degree sign.
std::optional<Halves> SplitAtDegrees(const std::string& text) {
    if (std::ranges::count(text, Degree) != 2)
        return std::nullopt;
    const std::size_t first = text.find(Degree), second = text.rfind(Degree);
    for (std::size_t cut = first + 1; cut < second; ++cut) {
        const std::size_t begin = text.find_first_not_of(" ,", cut);
        Cursor cursor(std::string_view(text).substr(begin));
        cursor.TakeSign();
        const bool isNumber = !cursor.TakeNumber().empty();
        cursor.Skip(' ');
        if (isNumber && cursor.Rest().starts_with(Degree))
            return Halves{text.substr(0, cut), text.substr(begin)};
    }
    return std::nullopt;
}

std::optional<Halves> SplitAtBlank(const std::string& text, AtBlank rule) {
    auto halves = SplitAt(" ", text);
    if (!halves || rule == AtBlank::Nothing)
        return std::nullopt;
    const bool areLengths = rule == AtBlank::Lengths && !IsGrouped(*halves);
    if (!areLengths && !(HasDecimals(halves->first) && HasDecimals(halves->second)))
        return std::nullopt;
    return halves;
}

/// Without letters: at the most telling separator that there is, and at no other.
std::optional<Halves> SplitAtSeparator(const std::string& text, AtBlank rule) {
    for (const std::string_view separator : {";", ", "})
        if (text.find(separator) != std::string::npos)
            return SplitAt(separator, text);
    if (text.find(Degree) != std::string::npos)
        return SplitAtDegrees(text);
    auto halves = SplitAt(",", text);
    if (halves && halves->first.find('.') != std::string::npos &&
        halves->second.find('.') != std::string::npos)
        return halves;
    return SplitAtBlank(text, rule);
}

std::optional<Halves> Split(const std::string& text, AtBlank rule) {
    const bool hasLetter = std::ranges::any_of(text, [](char c) { return c >= 'A' && c <= 'Z'; });
    return hasLetter ? SplitAtLetters(text) : SplitAtSeparator(text, rule);
}

// Reading a half
// ---------------------------------------------------------------------------------------------

void TrimSeparators(std::string& half) {
    constexpr std::string_view Around = " ,;";
    half.erase(0, std::min(half.find_first_not_of(Around), half.size()));
    half.erase(half.find_last_not_of(Around) + 1);
}

/// The half without its letter and without separators around what is left.
std::optional<Lettered> CutLetter(std::string& half) {
    TrimSeparators(half);
    Lettered result;
    for (const bool atEnd : {false, true}) {
        if (half.empty() || !IsLetter(atEnd ? half.back() : half.front()))
            continue;
        if (result.letter != 0)
            return std::nullopt;
        result.letter = atEnd ? half.back() : half.front();
        half.erase(atEnd ? half.size() - 1 : 0, 1);
    }
    TrimSeparators(half);
    return result;
}

std::optional<double> Number(std::string_view digits, char decimalSign) {
    std::string text(digits);
    if (decimalSign == ',')
        std::ranges::replace(text, ',', '.');
    return TextToNumber(text);
}

/// The one to three numbers of an angle, without its sign.
std::optional<std::vector<std::string_view>> NumbersOfAngle(Cursor cursor) {
    std::vector<std::string_view> numbers;
    for (const char sign : {Degree, Minute, Second}) {
        numbers.push_back(cursor.TakeNumber());
        if (numbers.back().empty())
            return std::nullopt;
        if (EndsWith(cursor, sign))
            return numbers;
        if (!SkipUnit(cursor, sign))
            return std::nullopt;
    }
    return std::nullopt;
}

/// Degrees with optional minutes and seconds; only the last of them may have a fraction.
std::optional<Lettered> ReadAngle(std::string half, char decimalSign) {
    std::optional<Lettered> result = CutLetter(half);
    Cursor cursor(half);
    const std::string_view sign = cursor.TakeSign();
    const auto numbers = NumbersOfAngle(cursor);
    if (!result || !numbers || (!sign.empty() && result->letter != 0))
        return std::nullopt;
    double unit = 1;
    for (const std::string_view digits : *numbers) {
        const auto number = Number(digits, decimalSign);
        const bool isLast = digits.data() == numbers->back().data();
        if (!number || (unit < 1 && *number >= 60) || (!isLast && digits.find_first_of(".,") != digits.npos))
            return std::nullopt;
        result->value += *number * unit;
        ++result->numbers;
        unit /= 60;
    }
    if (sign == "-" || result->letter == 'S' || result->letter == 'W')
        result->value = -result->value;
    return result;
}

std::optional<Lettered> ReadLength(std::string half, char decimalSign) {
    std::optional<Lettered> result = CutLetter(half);
    Cursor cursor(half);
    cursor.TakeSign();
    if (!result || cursor.TakeNumber().empty() || !cursor.AtEnd())
        return std::nullopt;
    const auto number = Number(half, decimalSign);
    if (!number)
        return std::nullopt;
    result->value = *number;
    return result;
}

} // namespace

std::optional<LonLat> ParseLonLat(std::string_view text, char decimalSign, WrittenAs place) {
    const auto halves =
        Split(Unified(text), place == WrittenAs::PartOfAngle ? AtBlank::Nothing : AtBlank::Decimals);
    if (!halves)
        return std::nullopt;
    auto latitude = ReadAngle(halves->first, decimalSign);
    auto longitude = ReadAngle(halves->second, decimalSign);
    if (!latitude || !longitude)
        return std::nullopt;
    if (IsEastWest(latitude->letter))
        std::swap(latitude, longitude);
    const bool bare = latitude->letter == 0 && longitude->letter == 0;
    if (!bare && !(IsNorthSouth(latitude->letter) && IsEastWest(longitude->letter)))
        return std::nullopt;
    // Without letters only two angles written alike are surely a pair: "55; 40 30" is none.
    if (bare && latitude->numbers != longitude->numbers)
        return std::nullopt;
    if (std::abs(latitude->value) > LatitudeLimit || std::abs(longitude->value) > LongitudeLimit)
        return std::nullopt;
    return LonLat{longitude->value, latitude->value};
}

std::optional<EastNorth> ParseEastNorth(std::string_view text, char decimalSign) {
    const auto halves = Split(Unified(text), AtBlank::Lengths);
    if (!halves)
        return std::nullopt;
    auto easting = ReadLength(halves->first, decimalSign);
    auto northing = ReadLength(halves->second, decimalSign);
    if (!easting || !northing)
        return std::nullopt;
    if (easting->letter == 'N')
        std::swap(easting, northing);
    const bool bare = easting->letter == 0 && northing->letter == 0;
    if (!bare && !(easting->letter == 'E' && northing->letter == 'N'))
        return std::nullopt;
    return EastNorth{easting->value, northing->value};
}

bool HasDirections(std::string_view text) {
    const auto isExponent = [text](std::size_t at) {
        return (text[at] == 'E' || text[at] == 'e') && at > 0 && at + 1 < text.size() &&
               (IsDigit(text[at - 1]) || text[at - 1] == '.') &&
               (IsDigit(text[at + 1]) || text[at + 1] == '-' || text[at + 1] == '+');
    };
    constexpr std::string_view Letters = "NSEWnsew";
    std::size_t at = text.find_first_of(Letters);
    while (at != std::string_view::npos && isExponent(at))
        at = text.find_first_of(Letters, at + 1);
    return at != std::string_view::npos;
}
