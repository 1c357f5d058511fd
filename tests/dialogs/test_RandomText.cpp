#include "dialogs/RandomText.h"

#include <cmath>
#include <limits>

namespace {

constexpr double JustBelowOne = 1.0 - std::numeric_limits<double>::epsilon() / 2;

UniformDraw Always(double value) {
    return [value] { return value; };
}

} // namespace

TEST(RandomText, KeepsWhatIsNoMark) {
    const QString mask = QStringLiteral("ID-anh !\u00e6\U0001F5FA");
    EXPECT_EQ(RandomText(mask, Always(0)), mask);
    EXPECT_EQ(RandomText(QString(), Always(0)), QString());
}

TEST(RandomText, TakesTheFirstAndTheLastOfEachAlphabet) {
    EXPECT_EQ(RandomText(QStringLiteral("#ANH"), Always(0)), QStringLiteral("0AA0"));
    EXPECT_EQ(RandomText(QStringLiteral("#ANH"), Always(JustBelowOne)), QStringLiteral("9z9F"));
}

TEST(RandomText, GivesEveryLetterAnEqualShareInOrder) {
    const QString letters = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789");
    for (int i = 0; i < 62; ++i)
        EXPECT_EQ(RandomText(QStringLiteral("N"), Always((i + 0.5) / 62)), letters.mid(i, 1));
    for (int i = 0; i < 52; ++i)
        EXPECT_EQ(RandomText(QStringLiteral("A"), Always((i + 0.5) / 52)), letters.mid(i, 1));
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(RandomText(QStringLiteral("H"), Always((i + 0.5) / 16)),
                  QStringLiteral("0123456789ABCDEF").mid(i, 1));
}

TEST(RandomText, TakesCodes1To128RoundedHalfToEven) {
    const auto code = [](double drawn) {
        return RandomText(QStringLiteral("?"), Always(drawn)).front().unicode();
    };
    EXPECT_EQ(code(0), 1);
    EXPECT_EQ(code(1.5 / 127), 2) << "2.5 goes to 2";
    EXPECT_EQ(code(2.5 / 127), 4) << "3.5 goes to 4";
    EXPECT_EQ(code(64.0 / 127), 65);
    EXPECT_EQ(code(126.0 / 127), 127);
    EXPECT_EQ(code(JustBelowOne), 0x20AC) << "code 128 of the single-byte set is the euro sign";
}

TEST(RandomText, DrawsOnceForEachMarkFromTheFirstToTheLast) {
    int draws = 0;
    const QString text = RandomText(QStringLiteral("ID-####"), [&draws] { return draws++ / 10.0 + 0.01; });
    EXPECT_EQ(text, QStringLiteral("ID-0123"));
    EXPECT_EQ(draws, 4);
}

TEST(SeededGenerator, IsUniformInItsRange) {
    SeededGenerator generator;
    constexpr int Draws = 200000;
    std::array<int, 10> tenths{};
    for (int i = 0; i < Draws; ++i) {
        const double drawn = generator();
        ASSERT_GE(drawn, 0.0);
        ASSERT_LT(drawn, 1.0);
        ++tenths.at(static_cast<std::size_t>(drawn * 10));
    }
    // Seven standard deviations: a sound generator fails this once in some hundred thousand million runs.
    for (const int count : tenths)
        EXPECT_NEAR(count, Draws / 10, 7 * std::sqrt(Draws * 0.09));
}

TEST(SeededGenerator, GivesOtherNumbersAfterEachSeedAndToEachObject) {
    SeededGenerator first, second;
    const double drawn = first();
    EXPECT_NE(drawn, second());
    EXPECT_NE(drawn, first());
    first.Seed();
    EXPECT_NE(drawn, first());
}
