#include "wizard/FormPlacement.h"

#include <gtest/gtest.h>

#include <cstdlib>

// Where a form opens so that the place it asks about stays in sight.

namespace {

struct Desk {
    QRect screen;
    QSize form;
};

constexpr QSize FormSize(560, 520);

QRect Placed(const Desk& desk, const QPoint& place) {
    return {PlaceBeside(place, desk.form, desk.screen.adjusted(100, 100, -100, -100), desk.screen),
            desk.form};
}

} // namespace

TEST(FormPlacement, LeavesThePlaceInSightAndStaysOnTheScreen) {
    for (const Desk& desk : {Desk{{0, 0, 1920, 1080}, FormSize}, Desk{{0, 0, 1280, 720}, FormSize},
                             Desk{{0, 28, 1366, 740}, FormSize}, Desk{{1920, -200, 3840, 2160}, FormSize},
                             Desk{{0, 0, 1024, 768}, {500, 500}}}) {
        for (int y = desk.screen.top(); y <= desk.screen.bottom(); y += 37) {
            for (int x = desk.screen.left(); x <= desk.screen.right(); x += 41) {
                const QRect form = Placed(desk, {x, y});
                ASSERT_TRUE(desk.screen.contains(form)) << x << ", " << y;
                ASSERT_FALSE(form.contains(QPoint(x, y))) << x << ", " << y;
            }
        }
    }
}

TEST(FormPlacement, TakesTheSideWithMoreRoomAndLeavesSomeAboutThePlace) {
    const Desk desk{{0, 0, 1920, 1080}, FormSize};
    EXPECT_GE(Placed(desk, {300, 500}).left(), 300 + 100);
    EXPECT_LE(Placed(desk, {1600, 500}).right(), 1600 - 100);
    const Desk upright{{0, 0, 900, 1600}, FormSize};
    EXPECT_GE(Placed(upright, {450, 200}).top(), 200 + 100);
    EXPECT_LE(Placed(upright, {450, 1400}).bottom(), 1400 - 100);
    // Not at the far end of a wide screen: figures are read and typed side by side.
    EXPECT_LE(Placed({{0, 0, 3840, 2160}, FormSize}, {300, 500}).left(), 300 + 300);
}

TEST(FormPlacement, StaysOnAScreenThatHasNoRoomBesideThePlace) {
    const Desk desk{{0, 0, 800, 600}, FormSize};
    EXPECT_TRUE(desk.screen.contains(Placed(desk, {400, 300})));
    const Desk tiny{{0, 0, 320, 240}, FormSize};
    EXPECT_EQ(Placed(tiny, {100, 100}).topLeft(), QPoint(0, 0));
}
