#include "platform/modFields.h"

#include "base/CheckedNumbers.h"

#include <QComboBox>
#include <QEvent>
#include <QLineEdit>
#include <QSignalBlocker>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>

namespace {

/// From 2^53 on a double has no fraction: nothing is left to round.
constexpr double WholeFrom = 9007199254740992.0;

/// The one place that says what a number is: the test and the conversion cannot disagree.
std::optional<double> NumberIn(const QString& fieldText, QLocale locale) {
    if (fieldText.isEmpty())
        return 0.0;
    QString text = WithoutOuterBlanks(fieldText);
    // Some locales write a sign with a direction mark before it, which Qt writes but does not read.
    text.replace(locale.negativeSign(), QStringLiteral("-"))
        .replace(locale.positiveSign(), QStringLiteral("+"));
    if (text.isEmpty() || text.front().isSpace() || text.back().isSpace())
        return std::nullopt;
    locale.setNumberOptions(QLocale::RejectGroupSeparator);
    bool isNumber = false;
    const double value = locale.toDouble(text, &isNumber);
    if (!isNumber || !std::isfinite(value))
        return std::nullopt;
    return value;
}

class WheelGuard : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        const auto* const control = qobject_cast<QWidget*>(watched);
        if (event->type() != QEvent::Wheel || control == nullptr || control->hasFocus())
            return false;
        event->ignore();
        return true;
    }
};

template <typename Texts>
QStringList StringList(const Texts& texts) {
    QStringList list;
    for (const std::string_view text : texts)
        list.append(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
    return list;
}

} // namespace

NumberError::NumberError(const QString& fieldText)
    : std::runtime_error(QStringLiteral("'%1' is not a number!").arg(fieldText).toStdString()) {}

QString NumberError::Description() const {
    return QString::fromUtf8(what());
}

double GetNumber(const QLineEdit& field, const QLocale& locale) {
    const std::optional<double> number = NumberIn(field.text(), locale);
    if (!number)
        throw NumberError(field.text());
    return *number;
}

std::int32_t IntegerFrom(const QLineEdit& field, const QLocale& locale) {
    const double number = GetNumber(field, locale);
    try {
        return CheckedRound<std::int32_t>(number);
    } catch (const ComponentError&) {
        throw NumberError(field.text());
    }
}

QString NumberText(double value, int decimals, const QLocale& locale) {
    // Scaled and rounded first: Qt alone rounds a tie (0.125) away from zero.
    const double scale = std::pow(10.0, decimals);
    if (std::abs(value * scale) < WholeFrom)
        value = RoundHalfEven(value * scale) / scale;
    if (value == 0.0)
        value = 0.0; // drops the sign of a negative zero
    QLocale plain = locale;
    plain.setNumberOptions(QLocale::OmitGroupSeparator);
    QString text = plain.toString(value, 'f', decimals);
    if (decimals > 0) {
        while (text.endsWith(plain.zeroDigit()))
            text.chop(plain.zeroDigit().size());
        if (text.endsWith(plain.decimalPoint()))
            text.chop(plain.decimalPoint().size());
    }
    return text;
}

QString WithoutOuterBlanks(const QString& text) {
    const auto isBlank = [](QChar character) { return character == u' '; };
    const auto first = std::find_if_not(text.begin(), text.end(), isBlank);
    const auto last = std::find_if_not(text.rbegin(), std::make_reverse_iterator(first), isBlank);
    return QString(first, last.base() - first);
}

QString OneLine(const QString& text) {
    constexpr qsizetype Longest = 500; // wider than any screen
    QString line = text.left(Longest);
    for (QChar& character : line)
        if (character.category() == QChar::Other_Control || character == QChar::LineSeparator ||
            character == QChar::ParagraphSeparator)
            character = u' ';
    return line;
}

QString ComboText(const QComboBox& combo) {
    return combo.currentIndex() == -1 ? QString() : combo.itemText(combo.currentIndex());
}

void SelectComboItem(QComboBox& combo, const QString& text, bool selectFirst) {
    for (int position = 0; position < combo.count(); ++position) {
        if (combo.itemText(position) == text) {
            combo.setCurrentIndex(position);
            return;
        }
    }
    // An empty list has no first entry; Qt would unselect instead, which is the same.
    if (selectFirst && combo.count() > 0)
        combo.setCurrentIndex(0);
}

void GuardFromWheel(QWidget& control) {
    control.installEventFilter(new WheelGuard(&control));
}

void FillCombo(QComboBox& combo, const QStringList& entries) {
    // The first entry added would select itself and say so.
    const QSignalBlocker silent(combo);
    combo.clear();
    combo.addItems(entries);
    combo.setCurrentIndex(-1);
}

void FillCombo(QComboBox& combo, std::span<const std::string_view> entries) {
    FillCombo(combo, StringList(entries));
}

void FillCombo(QComboBox& combo, const std::vector<std::string>& entries) {
    FillCombo(combo, StringList(entries));
}
