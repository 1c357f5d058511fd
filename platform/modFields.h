#pragma once

#include <QLocale>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

class QComboBox;
class QLineEdit;
class QWidget;

// Reading and filling the fields and lists of forms. Numbers are written as the user's system writes them;
// the locale is an argument so that a test can be any user.

/// A field that holds no number. Number 1, source "Narvoquist"; the description is the sentence to show:
/// "'12a' is not a number!" for a field that holds 12a.
class NumberError : public std::runtime_error {
public:
    static constexpr int Number = 1;
    static constexpr std::string_view Source = "Narvoquist";

    explicit NumberError(const QString& fieldText);
    QString Description() const;
};

/// The field's text as a number; an empty field is 0. A sign, an exponent and blanks around the number are
/// allowed; group separators, infinity and "nan" are not. NumberError.
double GetNumber(const QLineEdit& field, const QLocale& locale = QLocale::system());

/// The same, rounded half to even to a whole number of 32 bits; NumberError also when it does not fit.
std::int32_t IntegerFrom(const QLineEdit& field, const QLocale& locale = QLocale::system());

/// The number for a field: rounded half to even to so many decimals (0 to 15), without padding zeros,
/// exponent and group separators; never "-0". GetNumber reads it back.
QString NumberText(double value, int decimals, const QLocale& locale = QLocale::system());

/// The text without blanks at its ends. Blanks are spaces only: Qt's own trimming takes tabs and line ends
/// along.
QString WithoutOuterBlanks(const QString& text);

/// The beginning of the text, 500 characters at most, in one line, for a list that shows what anybody may
/// have written: line ends and other control characters become blanks. A list that laid out a text of a
/// megabyte would stand still.
QString OneLine(const QString& text);

/// The selected entry's text, or nothing when none is selected.
QString ComboText(const QComboBox& combo);

/// Selects the first entry whose text is exactly this; without one the first of all if `selectFirst`, else
/// the selection stays.
void SelectComboItem(QComboBox& combo, const QString& text, bool selectFirst);

/// Keeps the wheel from changing the control while it has not the focus: a scroll over a list must not
/// choose.
void GuardFromWheel(QWidget& control);

/// Replaces the entries. Nothing is selected afterwards, and no signal is emitted. Texts are UTF-8.
void FillCombo(QComboBox& combo, const QStringList& entries);
void FillCombo(QComboBox& combo, std::span<const std::string_view> entries);
void FillCombo(QComboBox& combo, const std::vector<std::string>& entries);
