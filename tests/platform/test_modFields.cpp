#include "platform/modFields.h"

namespace {

const QLocale German(QLocale::German, QLocale::Germany);
const QLocale English(QLocale::English, QLocale::UnitedStates);

std::string ErrorOf(const QString& text, const QLocale& locale = English) {
    const QLineEdit field(text);
    try {
        const double value = GetNumber(field, locale);
        return "read as " + std::to_string(value);
    } catch (const NumberError& error) {
        return error.Description().toStdString();
    }
}

double Read(const QString& text, const QLocale& locale) {
    return GetNumber(QLineEdit(text), locale);
}

} // namespace

TEST(NumberFields, CountAsZeroWhenEmpty) {
    EXPECT_EQ(Read(QString(), English), 0.0);
    EXPECT_EQ(IntegerFrom(QLineEdit(), English), 0);
}

TEST(NumberFields, AreReadWithTheUsersDecimalSeparator) {
    EXPECT_EQ(Read(QStringLiteral("12,5"), German), 12.5);
    EXPECT_EQ(Read(QStringLiteral("12.5"), English), 12.5);
    EXPECT_EQ(ErrorOf(QStringLiteral("12.5"), German), "'12.5' is not a number!");
    EXPECT_EQ(ErrorOf(QStringLiteral("12,5"), English), "'12,5' is not a number!");
}

TEST(NumberFields, TakeSignsExponentsAndBlanksAround) {
    EXPECT_EQ(Read(QStringLiteral("+3"), English), 3.0);
    EXPECT_EQ(Read(QStringLiteral("-0.25"), English), -0.25);
    EXPECT_EQ(Read(QStringLiteral("1.5e3"), English), 1500.0);
    EXPECT_EQ(Read(QStringLiteral("1,5E-3"), German), 0.0015);
    EXPECT_EQ(Read(QStringLiteral("  7  "), English), 7.0);
    EXPECT_EQ(Read(QStringLiteral(".5"), English), 0.5);
    EXPECT_EQ(Read(QStringLiteral("5."), English), 5.0);
}

TEST(NumberFields, RefuseWhatIsNoNumberAndQuoteItAsItStands) {
    for (const char* const text :
         {"12a",   "a",      " ",    "   ",   "-",           ".",     "e5",  "1e",    "1 2",
          "- 5",   "--5",    "1..2", "inf",   "-inf",        "+INF",  "nan", "NaN",   "infinity",
          "1e999", "-1e999", "0x10", "1,234", "1,234,567.8", " 12a ", "12%", "12.5 m"})
        EXPECT_EQ(ErrorOf(QString::fromLatin1(text)), "'" + std::string(text) + "' is not a number!");
    EXPECT_EQ(ErrorOf(QStringLiteral("\t7")), "'\t7' is not a number!");
    EXPECT_EQ(ErrorOf(QStringLiteral("7\u00a0")), "'7\u00a0' is not a number!");
    EXPECT_EQ(ErrorOf(QStringLiteral("1.234"), German), "'1.234' is not a number!");
    EXPECT_EQ(ErrorOf(QStringLiteral("1.234,5"), German), "'1.234,5' is not a number!");
    EXPECT_EQ(ErrorOf(QStringLiteral("%1 <b>é</b>")), "'%1 <b>é</b>' is not a number!");
}

TEST(NumberErrors, CarryNumberSourceAndDescription) {
    const NumberError error(QStringLiteral("12a"));
    EXPECT_EQ(NumberError::Number, 1);
    EXPECT_EQ(NumberError::Source, "Narvoquist");
    EXPECT_STREQ(error.what(), "'12a' is not a number!");
    EXPECT_EQ(error.Description(), QStringLiteral("'12a' is not a number!"));
}

TEST(WholeNumberFields, RoundTiesToEvenAndStayIn32Bits) {
    const auto read = [](const char* text) {
        return IntegerFrom(QLineEdit(QString::fromLatin1(text)), English);
    };
    EXPECT_EQ(read("10.5"), 10);
    EXPECT_EQ(read("11.5"), 12);
    EXPECT_EQ(read("-2.5"), -2);
    EXPECT_EQ(read(" 42 "), 42);
    EXPECT_EQ(read("2147483647"), 2147483647);
}

TEST(WholeNumberFields, RefuseWhatDoesNotFit) {
    for (const char* const text : {"2147483648", "-2147483649", "1e20", "abc"})
        EXPECT_THROW(IntegerFrom(QLineEdit(QString::fromLatin1(text)), English), NumberError) << text;
    EXPECT_EQ(IntegerFrom(QLineEdit(QStringLiteral("-2147483648")), English), -2147483647 - 1);
}

TEST(OneLines, AreTheBeginningOfATextWithoutLineEnds) {
    EXPECT_EQ(OneLine(QStringLiteral(" North \u00e6 \U0001F5FA <b> ")),
              QStringLiteral(" North \u00e6 \U0001F5FA <b> "));
    EXPECT_EQ(OneLine(QStringLiteral("a\nb\r\nc\td\u2028e\u2029f\u0007g")), QStringLiteral("a b  c d e f g"));
    EXPECT_EQ(OneLine(QStringLiteral("ab").repeated(1 << 19)), QStringLiteral("ab").repeated(250));
    EXPECT_EQ(OneLine(QString()), QString());
}

TEST(NumberTexts, AreShortWithoutPaddingExponentAndGroups) {
    EXPECT_EQ(NumberText(12.5, 2, English), QStringLiteral("12.5"));
    EXPECT_EQ(NumberText(12.0, 2, English), QStringLiteral("12"));
    EXPECT_EQ(NumberText(500000.12, 2, English), QStringLiteral("500000.12"));
    EXPECT_EQ(NumberText(500000.12, 2, German), QStringLiteral("500000,12"));
    EXPECT_EQ(NumberText(100, 0, English), QStringLiteral("100"));
    EXPECT_EQ(NumberText(1e21, 2, English), QStringLiteral("1000000000000000000000"));
    EXPECT_EQ(NumberText(0.00001, 7, English), QStringLiteral("0.00001"));
}

TEST(NumberTexts, RoundTiesToEven) {
    EXPECT_EQ(NumberText(0.125, 2, English), QStringLiteral("0.12"));
    EXPECT_EQ(NumberText(0.375, 2, English), QStringLiteral("0.38"));
    EXPECT_EQ(NumberText(2.5, 0, English), QStringLiteral("2"));
    EXPECT_EQ(NumberText(-0.125, 2, German), QStringLiteral("-0,12"));
}

TEST(NumberTexts, HaveNoNegativeZero) {
    EXPECT_EQ(NumberText(-0.0, 2, English), QStringLiteral("0"));
    EXPECT_EQ(NumberText(-0.004, 2, English), QStringLiteral("0"));
}

TEST(NumberTexts, AreReadBackInEveryLocale) {
    for (const QLocale::Language language :
         {QLocale::C, QLocale::English, QLocale::German, QLocale::French, QLocale::Swedish,
          QLocale::NorwegianBokmal, QLocale::Finnish, QLocale::Arabic, QLocale::Persian, QLocale::Hindi,
          QLocale::Bengali, QLocale::Hebrew, QLocale::Slovenian, QLocale::Chinese})
        for (const double value : {0.0, 1234567.89, -1234567.89, -0.01, 12.0, 500000.0}) {
            const QLocale locale(language);
            EXPECT_EQ(Read(NumberText(value, 2, locale), locale), value) << locale.name().toStdString();
            EXPECT_EQ(Read(QStringLiteral("-12"), locale), -12.0) << locale.name().toStdString();
        }
}

class ComboBoxes : public testing::Test {
protected:
    void SetUp() override {
        QObject::connect(&combo_, &QComboBox::currentIndexChanged, [this](int) { ++changes_; });
    }

    QComboBox combo_;
    int changes_ = 0;
};

TEST_F(ComboBoxes, SelectNothingWhenTheyAreFilled) {
    FillCombo(combo_, QStringList{QStringLiteral("a"), QStringLiteral("b")});
    EXPECT_EQ(combo_.currentIndex(), -1);
    EXPECT_EQ(ComboText(combo_), QString());
    combo_.setCurrentIndex(1);
    FillCombo(combo_, std::vector<std::string>{"c", "Ö"});
    EXPECT_EQ(combo_.currentIndex(), -1);
    EXPECT_EQ(combo_.count(), 2);
    EXPECT_EQ(combo_.itemText(1), QStringLiteral("Ö"));
    EXPECT_EQ(changes_, 1) << "only the selection from outside is told";
}

TEST_F(ComboBoxes, AreFilledFromTablesInTheirOrder) {
    constexpr std::array<std::string_view, 3> Table{"meters", "yards", "U.S. feet"};
    FillCombo(combo_, Table);
    ASSERT_EQ(combo_.count(), 3);
    EXPECT_EQ(combo_.itemText(0), QStringLiteral("meters"));
    EXPECT_EQ(combo_.itemText(2), QStringLiteral("U.S. feet"));
    FillCombo(combo_, QStringList());
    EXPECT_EQ(combo_.count(), 0);
}

TEST_F(ComboBoxes, TellTheSelectedText) {
    EXPECT_EQ(ComboText(combo_), QString());
    FillCombo(combo_, QStringList{QStringLiteral("a"), QStringLiteral("b")});
    combo_.setCurrentIndex(1);
    EXPECT_EQ(ComboText(combo_), QStringLiteral("b"));
}

TEST_F(ComboBoxes, SelectTheFirstOfTwoEqualTextsAndCompareExactly) {
    FillCombo(combo_, QStringList{QStringLiteral("A"), QStringLiteral("b"), QStringLiteral("a"),
                                  QStringLiteral("a")});
    SelectComboItem(combo_, QStringLiteral("a"), false);
    EXPECT_EQ(combo_.currentIndex(), 2);
    SelectComboItem(combo_, QStringLiteral("B"), false);
    EXPECT_EQ(combo_.currentIndex(), 2) << "not found: the selection stays";
    SelectComboItem(combo_, QStringLiteral("B"), true);
    EXPECT_EQ(combo_.currentIndex(), 0);
    combo_.clear();
    SelectComboItem(combo_, QStringLiteral("B"), true);
    EXPECT_EQ(combo_.currentIndex(), -1);
}
