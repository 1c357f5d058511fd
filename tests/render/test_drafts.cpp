// Views whose tiles take longer than the patience.

#include "base/ComponentError.h"
#include "component/render/ViewRenderer.h"
#include "tests/render/DrawnMap.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace {

using std::chrono::milliseconds;

constexpr milliseconds Patience{1};

/// A map on a slow disk: every tile takes longer than the patience.
class SlowMap : public DrawnMap {
public:
    using DrawnMap::DrawnMap;

    std::vector<std::uint8_t> ReadTile(int level, std::int32_t row, std::int32_t column) override {
        if (locked)
            throw ComponentError(ErrorNumber::FileLocked, "Another program holds the file.");
        if (slow)
            std::this_thread::sleep_for(2 * Patience);
        {
            const std::scoped_lock lock(mutex_);
            levels.insert(level);
        }
        return DrawnMap::ReadTile(level, row, column);
    }

    bool slow = true;
    bool locked = false;
    std::set<int> levels; ///< those of which a tile was read

private:
    std::mutex mutex_;
};

class DraftView : public testing::Test {
protected:
    void ExpectLevel(int level, const ViewRequest& request, const Bitmap& view) {
        for (const std::int32_t at : {0, 77, 249})
            for (const int shift : {0, 8, 16}) {
                const double expected =
                    MeanAround(map.Level(level), level, shift, (at + request.left) / request.zoom,
                               (at + request.top) / request.zoom, request.zoom);
                EXPECT_NEAR(view.Row(at)[at] >> shift & 0xFF, expected, 3) << request.zoom << " at " << at;
            }
    }

    SlowMap map{SpeckledPicture(1200, 1000), 64, 64, PixelFormat::Rgb};
};

Bitmap Final(SlowMap& map, const ViewRequest& request) {
    std::shared_ptr<const Bitmap> view;
    ViewRenderer(map.Layout(), map, std::make_shared<ViewMemory>()).Render(request, view);
    return *view;
}

/// Asks again until the view is final; how often that was.
int Finish(ViewRenderer& renderer, const ViewRequest& request, std::shared_ptr<const Bitmap>& view) {
    int asked = 0;
    while (renderer.IsDraft() && asked < 1000) {
        ++asked;
        const bool changed = renderer.Render(request, view);
        EXPECT_EQ(changed, !renderer.IsDraft());
    }
    return asked;
}

} // namespace

TEST_F(DraftView, ShowsACoarserLevelFirstAndThenTheZoomsOwn) {
    for (const double zoom : {0.3, 0.7, 1.0, 1.9}) {
        map.slow = true;
        map.levels.clear();
        ViewRenderer renderer(map.Layout(), map, std::make_shared<ViewMemory>(2, Patience));
        const ViewRequest request{10, 20, 300, 250, zoom};
        std::shared_ptr<const Bitmap> view;
        ASSERT_TRUE(renderer.Render(request, view));
        EXPECT_TRUE(renderer.IsDraft()) << zoom;
        const int level = *map.levels.rbegin();
        EXPECT_EQ(level, *map.levels.begin() + 2) << "far fewer tiles";
        ExpectLevel(level, request, *view);
        EXPECT_GT(Finish(renderer, request, view), 1);
        EXPECT_FALSE(renderer.IsDraft());
        map.slow = false;
        EXPECT_EQ(view->pixels, Final(map, request).pixels) << zoom;
        EXPECT_FALSE(renderer.Render(request, view));
    }
}

TEST_F(DraftView, TakesTheNextLevelWhenThatIsAtHand) {
    ViewRenderer renderer(map.Layout(), map, std::make_shared<ViewMemory>(2, Patience));
    std::shared_ptr<const Bitmap> view;
    renderer.Render({0, 0, 300, 250, 0.5}, view);
    Finish(renderer, {0, 0, 300, 250, 0.5}, view);
    renderer.Render({0, 0, 300, 250, 0.8}, view);
    ASSERT_TRUE(renderer.IsDraft());
    ExpectLevel(1, {0, 0, 300, 250, 0.8}, *view);
}

TEST_F(DraftView, ScrolledBeforeItIsFinalEndsAsOneDrawnAnew) {
    ViewRenderer renderer(map.Layout(), map, std::make_shared<ViewMemory>(2, Patience));
    ViewRequest request{10, 20, 300, 250, 0.7};
    std::shared_ptr<const Bitmap> view;
    for (int i = 0; i < 4; ++i, request.left += 50, request.top += 30) {
        renderer.Render(request, view);
        EXPECT_TRUE(renderer.IsDraft());
    }
    request.left -= 50, request.top -= 30;
    Finish(renderer, request, view);
    map.slow = false;
    EXPECT_EQ(view->pixels, Final(map, request).pixels);
}

TEST_F(DraftView, IsObstructedForAsLongAsItsTilesCannotBeRead) {
    ViewRenderer renderer(map.Layout(), map, std::make_shared<ViewMemory>(2, Patience));
    const ViewRequest request{0, 0, 300, 250, 1};
    std::shared_ptr<const Bitmap> view;
    map.locked = true;
    for (int i = 0; i < 3; ++i) {
        renderer.Render(request, view);
        EXPECT_TRUE(renderer.IsDraft());
        EXPECT_TRUE(renderer.IsObstructed());
    }
    map.locked = false;
    renderer.Render(request, view);
    EXPECT_FALSE(renderer.IsObstructed());
    Finish(renderer, request, view);
    EXPECT_EQ(view->pixels, Final(map, request).pixels);
}

TEST_F(DraftView, KeepsWhatAFinalViewShowedWhenItIsScrolled) {
    ViewRenderer renderer(map.Layout(), map, std::make_shared<ViewMemory>(2, Patience));
    std::shared_ptr<const Bitmap> view, draft;
    renderer.Render({0, 0, 300, 250, 1}, view);
    Finish(renderer, {0, 0, 300, 250, 1}, view);
    renderer.Render({0, 150, 300, 250, 1}, draft);
    ASSERT_TRUE(renderer.IsDraft());
    EXPECT_TRUE(std::equal(view->Row(150), view->Row(249) + 300, draft->Row(0)));
    EXPECT_FALSE(std::equal(map.Level(0).Row(300), map.Level(0).Row(300) + 300, draft->Row(150)));
}

TEST_F(DraftView, IsNeverShownWithoutAPatienceOrACoarserLevel) {
    std::shared_ptr<const Bitmap> view;
    ViewRenderer patient(map.Layout(), map, std::make_shared<ViewMemory>(2));
    patient.Render({0, 0, 300, 250, 1}, view);
    EXPECT_FALSE(patient.IsDraft());
    SlowMap small(SpeckledPicture(60, 60), 64, 64, PixelFormat::Rgb);
    ViewRenderer single(small.Layout(), small, std::make_shared<ViewMemory>(2, Patience));
    single.Render({0, 0, 300, 250, 1}, view);
    EXPECT_FALSE(single.IsDraft());
}
