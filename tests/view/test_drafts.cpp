// Maps that answer with a draft until their tiles are there.

#include "tests/view/ViewLayout.h"

#include <QTest>

namespace {

/// Until nothing more waits for a quiet moment, or something that never ends is plain to see.
void ServeQuietMoments() {
    for (int i = 0; i < 50; ++i)
        QCoreApplication::processEvents();
}

} // namespace

TEST_F(ViewLayout, AsksAgainAfterADraftUntilTheViewIsFinal) {
    const auto map = Show(2000, 2000);
    ServeQuietMoments();
    map->views.clear();
    map->drafts = 3;
    View().ScrollBy({100, 50});
    ASSERT_EQ(map->views.size(), 1U) << "not before the draft could be painted";
    ServeQuietMoments();
    ASSERT_EQ(map->views.size(), 4U);
    EXPECT_EQ(map->views.back(), map->views.front());
}

TEST_F(ViewLayout, ADraftThatCannotBeReadIsNotAskedForWithoutPause) {
    const auto map = Show(2000, 2000);
    ServeQuietMoments();
    map->drafts = 2;
    View().ScrollBy({100, 50});
    ASSERT_TRUE(map->ViewIsDraft());
    map->fails = true;
    map->views.clear();
    ServeQuietMoments();
    EXPECT_EQ(map->views.size(), 1U);
    map->fails = false;
    EXPECT_TRUE(QTest::qWaitFor([&] { return !map->ViewIsDraft(); }, 30'000)) << "It is not given up.";
    EXPECT_EQ(window_.viewer.Image(), View().objBitmap());
}

TEST_F(ViewLayout, ADraftOfALockedFileIsNotAskedForWithoutPause) {
    const auto map = Show(2000, 2000);
    ServeQuietMoments();
    map->drafts = 1;
    map->obstructed = true;
    View().ScrollBy({100, 50});
    ASSERT_TRUE(map->ViewIsDraft());
    map->views.clear();
    ServeQuietMoments();
    EXPECT_TRUE(map->views.empty());
    map->obstructed = false;
    EXPECT_TRUE(QTest::qWaitFor([&] { return !map->ViewIsDraft(); }, 30'000)) << "It is not given up.";
}

TEST_F(ViewLayout, WhileBusyLeavesADraftAndFinishesItAfterwards) {
    const auto map = Show(2000, 2000);
    ServeQuietMoments();
    map->drafts = 2;
    View().ScrollBy({100, 50});
    View().SetBusy(true);
    map->views.clear();
    ServeQuietMoments();
    EXPECT_TRUE(map->views.empty());
    View().SetBusy(false);
    ServeQuietMoments();
    EXPECT_FALSE(map->ViewIsDraft());
}

TEST_F(ViewLayout, ForgetsADraftWithItsMap) {
    const auto map = Show(2000, 2000);
    map->drafts = 2;
    View().ScrollBy({100, 50});
    View().Clear();
    map->views.clear();
    ServeQuietMoments();
    EXPECT_TRUE(map->views.empty());
}
