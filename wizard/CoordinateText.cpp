#include "wizard/CoordinateText.h"

#include "base/NumberText.h"

#include <QRegularExpression>
#include <QStringList>

#include <cmath>

namespace {

constexpr double LatitudeLimit = 90;
constexpr double LongitudeLimit = 360;

/// A value together with the letter that stood at it, or a null character, and of how many numbers it is
/// made.
struct Lettered {
    double value = 0;
    QChar letter;
    int numbers = 0;
};

/// Both halves of a pair in the order in which they stand.
struct Halves {
    QString first;
    QString second;
};

/// The many ways to write minutes, seconds and minus as one.
QString Unified(QString text) {
    static const QRegularExpression blanks(QStringLiteral("\\s+"));
    text = text.toUpper().replace(blanks, QStringLiteral(" ")).trimmed();
    text.replace(QChar(0x00BA), QChar(0x00B0)); // masculine ordinal for degree
    for (const char16_t minute : {u'\u2032', u'\u2019', u'\u00B4'})
        text.replace(QChar(minute), u'\'');
    for (const char16_t second : {u'\u2033', u'\u201D'})
        text.replace(QChar(second), u'"');
    text.replace(QStringLiteral("''"), QStringLiteral("\""));
    return text.replace(QChar(0x2212), u'-');
}

bool HasDecimalComma(const QLocale& locale) {
    return locale.decimalPoint() == QStringLiteral(",");
}

/// Where the letters are: the second half begins at its leading letter, or behind the first half's trailing
/// one.
std::optional<Halves> SplitAtLetters(const QString& text) {
    static const QRegularExpression letter(QStringLiteral("[NSEW]"));
    const bool leading = letter.match(text.left(1)).hasMatch();
    const qsizetype first = text.indexOf(letter);
    const qsizetype cut = leading ? text.indexOf(letter, first + 1) : first + 1;
    if (cut <= 0 || cut >= text.size())
        return std::nullopt;
    return Halves{text.left(cut), text.mid(cut)};
}

/// What a blank alone may part.
enum class AtBlank { Nothing, Decimals, Lengths };

bool HasDecimals(const QString& half) {
    static const QRegularExpression decimals(QStringLiteral("\\d[.,]\\d"));
    return half.contains(decimals);
}

/// "617 300": one number as many countries group it.
bool IsGrouped(const QString& text) {
    static const QRegularExpression grouped(QStringLiteral("^[+-]?\\d{1,3} \\d{3}(?:[.,]\\d*)?$"));
    return grouped.match(text).hasMatch();
}

/// The text in two at its only separator; nothing where there are several.
std::optional<Halves> SplitAt(const QString& separator, const QString& text) {
    const QStringList halves = text.split(separator);
    if (halves.size() != 2)
        return std::nullopt;
    return Halves{halves[0], halves[1]};
}

/// Before the number that belongs to the second degree sign.
std::optional<Halves> SplitAtDegrees(const QString& text) {
    static const QRegularExpression pair(
        QStringLiteral("^([^\u00B0]*\u00B0[^\u00B0]*?)[ ,]*([+-]?\\d+(?:[.,]\\d*)? ?\u00B0[^\u00B0]*)$"));
    const QRegularExpressionMatch match = pair.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    return Halves{match.captured(1), match.captured(2)};
}

std::optional<Halves> SplitAtBlank(const QString& text, AtBlank rule) {
    const auto halves = SplitAt(QStringLiteral(" "), text);
    if (!halves || rule == AtBlank::Nothing)
        return std::nullopt;
    const bool areLengths = rule == AtBlank::Lengths && !IsGrouped(text);
    if (!areLengths && !(HasDecimals(halves->first) && HasDecimals(halves->second)))
        return std::nullopt;
    return halves;
}

/// Without letters: at the most telling separator that there is, and at no other.
std::optional<Halves> SplitAtSeparator(const QString& text, AtBlank rule) {
    static const QRegularExpression points(QStringLiteral("^[^,]*\\.[^,]*,[^,]*\\.[^,]*$"));
    for (const QString& separator : {QStringLiteral(";"), QStringLiteral(", ")}) {
        if (text.contains(separator))
            return SplitAt(separator, text);
    }
    if (text.contains(u'\u00B0'))
        return SplitAtDegrees(text);
    if (points.match(text).hasMatch())
        return SplitAt(QStringLiteral(","), text);
    return SplitAtBlank(text, rule);
}

std::optional<Halves> Split(const QString& text, AtBlank rule) {
    static const QRegularExpression letter(QStringLiteral("[A-Z]"));
    return text.contains(letter) ? SplitAtLetters(text) : SplitAtSeparator(text, rule);
}

/// The half without its letter and without separators around what is left.
std::optional<Lettered> CutLetter(QString& half) {
    static const QRegularExpression around(QStringLiteral("^[ ,;]+|[ ,;]+$"));
    half.remove(around);
    Lettered result;
    for (const bool atEnd : {false, true}) {
        if (half.isEmpty() || !half[atEnd ? half.size() - 1 : 0].isLetter())
            continue;
        if (!result.letter.isNull())
            return std::nullopt;
        result.letter = half[atEnd ? half.size() - 1 : 0];
        half = atEnd ? half.chopped(1) : half.mid(1);
    }
    half.remove(around);
    return result;
}

std::optional<double> Number(QString digits, const QLocale& locale) {
    if (HasDecimalComma(locale))
        digits.replace(u',', u'.');
    return TextToNumber(digits.toStdString());
}

/// Degrees with optional minutes and seconds; only the last of them may have a fraction.
std::optional<Lettered> ReadAngle(QString half, const QLocale& locale) {
    static const QRegularExpression angle(
        QStringLiteral("^([+-]?)(\\d+(?:[.,]\\d*)?)(?: ?\u00B0?$|(?: ?\u00B0 ?| )"
                       "(\\d+(?:[.,]\\d*)?)(?: ?'?$|(?: ?' ?| )(\\d+(?:[.,]\\d*)?) ?\"?$))"));
    std::optional<Lettered> result = CutLetter(half);
    const QRegularExpressionMatch match = angle.match(half);
    if (!result || !match.hasMatch())
        return std::nullopt;
    const bool hasSign = !match.captured(1).isEmpty();
    if (hasSign && !result->letter.isNull())
        return std::nullopt;
    bool sawFraction = false;
    double unit = 1;
    for (const int part : {2, 3, 4}) {
        const QString digits = match.captured(part);
        if (digits.isEmpty())
            break;
        const std::optional<double> number = Number(digits, locale);
        if (!number || sawFraction || (part > 2 && *number >= 60))
            return std::nullopt;
        sawFraction = digits.contains(u'.') || digits.contains(u',');
        result->value += *number * unit;
        ++result->numbers;
        unit /= 60;
    }
    const bool negative =
        match.captured(1) == QStringLiteral("-") || result->letter == u'S' || result->letter == u'W';
    result->value = negative ? -result->value : result->value;
    return result;
}

std::optional<Lettered> ReadLength(QString half, const QLocale& locale) {
    static const QRegularExpression length(QStringLiteral("^[+-]?\\d+(?:[.,]\\d*)?$"));
    std::optional<Lettered> result = CutLetter(half);
    if (!result || !length.match(half).hasMatch())
        return std::nullopt;
    const std::optional<double> number = Number(half, locale);
    if (!number)
        return std::nullopt;
    result->value = *number;
    return result;
}

bool IsEastWest(QChar letter) {
    return letter == u'E' || letter == u'W';
}

bool IsNorthSouth(QChar letter) {
    return letter == u'N' || letter == u'S';
}

} // namespace

std::optional<LonLat> ParseLonLat(const QString& text, const QLocale& locale, PastedInto place) {
    const auto halves =
        Split(Unified(text), place == PastedInto::PartOfAngle ? AtBlank::Nothing : AtBlank::Decimals);
    if (!halves)
        return std::nullopt;
    auto latitude = ReadAngle(halves->first, locale);
    auto longitude = ReadAngle(halves->second, locale);
    if (!latitude || !longitude)
        return std::nullopt;
    if (IsEastWest(latitude->letter))
        std::swap(latitude, longitude);
    const bool bare = latitude->letter.isNull() && longitude->letter.isNull();
    if (!bare && !(IsNorthSouth(latitude->letter) && IsEastWest(longitude->letter)))
        return std::nullopt;
    // Without letters only two angles written alike are surely a pair: "55; 40 30" is none.
    if (bare && latitude->numbers != longitude->numbers)
        return std::nullopt;
    if (std::abs(latitude->value) > LatitudeLimit || std::abs(longitude->value) > LongitudeLimit)
        return std::nullopt;
    return LonLat{longitude->value, latitude->value};
}

std::optional<EastNorth> ParseEastNorth(const QString& text, const QLocale& locale) {
    const auto halves = Split(Unified(text), AtBlank::Lengths);
    if (!halves)
        return std::nullopt;
    auto easting = ReadLength(halves->first, locale);
    auto northing = ReadLength(halves->second, locale);
    if (!easting || !northing)
        return std::nullopt;
    if (easting->letter == u'N')
        std::swap(easting, northing);
    const bool bare = easting->letter.isNull() && northing->letter.isNull();
    if (!bare && !(easting->letter == u'E' && northing->letter == u'N'))
        return std::nullopt;
    return EastNorth{easting->value, northing->value};
}
