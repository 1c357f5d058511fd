#include "platform/FilterText.h"

namespace {

std::string QtFilters(const char* text) {
    return FilterText(QString::fromLatin1(text)).QtFilters().join(u'\n').toStdString();
}

} // namespace

TEST(FilterTexts, BecomeQtsFilters) {
    EXPECT_EQ(QtFilters("Atlavex (*.Atlavex)|*.Atlavex|All files (*.*) |*.*"),
              "Atlavex (*.Atlavex) (*.Atlavex)\nAll files (*.*) (*)");
    EXPECT_EQ(QtFilters("All supported (*.bmp; *.gif)|*.bmp; *.gif|Bitmaps (*.bmp)|*.bmp"),
              "All supported (*.bmp; *.gif) (*.bmp *.gif)\nBitmaps (*.bmp) (*.bmp)");
    EXPECT_EQ(QtFilters("Maps|*.bmp;*.gif"), "Maps (*.bmp *.gif)");
}

TEST(FilterTexts, KnowTheDialogsAnswerByPlace) {
    const FilterText filter(QStringLiteral("Atlavex (*.Atlavex)|*.Atlavex|All files (*.*) |*.*"));
    EXPECT_EQ(filter.PositionOf(QStringLiteral("Atlavex (*.Atlavex)")), 0);
    EXPECT_EQ(filter.PositionOf(QStringLiteral("All files (*.*)")), 1);
    EXPECT_EQ(filter.PositionOf(QStringLiteral("Other")), -1);
}

TEST(FilterTexts, TakeNoHarmFromOddOnes) {
    EXPECT_EQ(QtFilters(""), "");
    EXPECT_EQ(QtFilters("Alone"), "");
    EXPECT_EQ(QtFilters("Maps|*.bmp|Alone"), "Maps (*.bmp)");
}
