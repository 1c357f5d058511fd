// Fitting, zooming about a point, scrolling by pixels, from the image to the screen and back, and waiting
// while the component is busy.

#include "base/ComponentError.h"
#include "tests/view/ViewLayout.h"

namespace {

using Call = RecordingMap::View;

} // namespace

TEST_F(ViewLayout, FitsTheWholeImage) {
    for (const auto& [width, height] : {std::pair(1000, 800), {300, 20000}, {20, 20}, {32768, 32768}}) {
        Show(width, height);
        const std::int32_t position = View().FitPosition();
        const auto fits = [&](std::int32_t at) {
            const double zoom = std::exp(at / 10.0);
            return std::ceil(width * zoom) <= Width() && std::ceil(height * zoom) <= Height();
        };
        if (position > -50) {
            EXPECT_TRUE(fits(position));
        }
        if (position < 20) {
            EXPECT_FALSE(fits(position + 1));
        }
        View().SetZoom(position);
        if (position > -50) {
            EXPECT_EQ(Horizontal().maximum() + Vertical().maximum(), 0);
        }
    }
}

TEST_F(ViewLayout, ZoomsAboutThePointer) {
    const auto map = Show(1000, 800);
    Horizontal().setValue(300);
    Vertical().setValue(200);
    const QPoint pointer(60, 50);
    map->views.clear();
    for (std::int32_t position = 1; position <= 20; ++position) {
        View().ZoomAbout(position, pointer);
        const double x = (View().HorizontalOffset() + 60) / View().Zoom();
        const double y = (View().VerticalOffset() + 50) / View().Zoom();
        // Each step may lose half a zoomed pixel.
        EXPECT_NEAR(x, 360, 0.5 * position);
        EXPECT_NEAR(y, 250, 0.5 * position);
        EXPECT_EQ(map->views.size(), static_cast<std::size_t>(position));
    }
    View().ZoomAbout(0, pointer);
    View().ZoomAbout(10, pointer);
    EXPECT_NEAR((View().HorizontalOffset() + 60) / View().Zoom(), 360, 12);
}

TEST_F(ViewLayout, ZoomsAboutThePointerOnlyAsFarAsTheEdgesAllow) {
    Show(1000, 800);
    View().ZoomAbout(5, {0, 0});
    EXPECT_EQ(View().HorizontalOffset(), 0);
    View().ZoomAbout(-30, {100, 100});
    EXPECT_EQ(View().HorizontalOffset(), 0);
    EXPECT_EQ(Horizontal().maximum(), 0);
}

TEST_F(ViewLayout, TheZoomKeepsTheMiddleWhereItIs) {
    for (const std::int32_t size : {4000, 20000}) {
        Show(size, size);
        Horizontal().setValue(1000);
        Vertical().setValue(800);
        const double x = 1000 + Width() / 2.0, y = 800 + Height() / 2.0;
        for (const std::int32_t position : {3, -10, 20, 7, -9, 1, 19, 0}) {
            View().SetZoom(position);
            const double zoom = View().Zoom();
            const double unit = View().HorizontalIsCoarse() ? 10 : 1;
            EXPECT_NEAR(View().HorizontalOffset() + Width() / 2.0, x * zoom, unit / 2 + 1e-6) << position;
            EXPECT_NEAR(View().VerticalOffset() + Height() / 2.0, y * zoom, unit / 2 + 1e-6) << position;
        }
        EXPECT_EQ(View().HorizontalOffset(), 1000) << "Nothing creeps away.";
        EXPECT_EQ(View().VerticalOffset(), 800);
    }
}

TEST_F(ViewLayout, TheZoomOfASmallImageKeepsItsOwnMiddle) {
    Show(Width() / 2, Height() / 2);
    View().SetZoom(15);
    EXPECT_NEAR(Horizontal().value(), Horizontal().maximum() / 2.0, 1);
    EXPECT_NEAR(Vertical().value(), Vertical().maximum() / 2.0, 1);
    EXPECT_GT(Horizontal().maximum(), 0);
}

TEST_F(ViewLayout, AMapStartsWhereItWasLastLookedAt) {
    const auto select = [this](const std::shared_ptr<RecordingMap>& map) {
        View().SetMap(map);
        View().SetMapWidth(map->Width());
        View().SetMapHeight(map->Height());
        View().AdjustSize();
    };
    const auto first = Show(40003, 800);
    Horizontal().setValue(Horizontal().maximum());
    Vertical().setValue(77);
    const std::int32_t end = View().HorizontalOffset();
    const auto second = Show(1000, 900, 2.0);
    EXPECT_EQ(second->views.back(), (Call{0, 0, Width(), Height(), 2.0})) << "at its upper left";
    Horizontal().setValue(31);
    select(first);
    EXPECT_EQ(View().HorizontalOffset(), end);
    EXPECT_EQ(View().VerticalOffset(), 77);
    View().Clear();
    select(second);
    EXPECT_EQ(second->views.back().left, 31);
    select(second);
    EXPECT_EQ(View().HorizontalOffset(), 31);
    select(first);
    EXPECT_EQ(View().HorizontalOffset(), end) << "also after the view was empty";
}

TEST_F(ViewLayout, ScrollsByPixelsAndRendersOnce) {
    const auto map = Show(1000, 800);
    map->views.clear();
    View().ScrollBy({30, 40});
    EXPECT_EQ(map->views, (std::vector<Call>{{30, 40, Width(), Height(), 1.0}}));
    View().ScrollBy({-100, -10});
    EXPECT_EQ(map->views.back(), (Call{0, 30, Width(), Height(), 1.0}));
    View().ScrollBy({100000, 100000});
    EXPECT_EQ(Horizontal().value(), Horizontal().maximum());
    EXPECT_EQ(Vertical().value(), Vertical().maximum());
}

TEST_F(ViewLayout, SmallMovementsAddUpOnACoarseBar) {
    Show(40000, 800);
    Horizontal().setValue(100);
    for (int i = 0; i < 10; ++i)
        View().ScrollBy({3, 0});
    EXPECT_EQ(Horizontal().value(), 103);
    for (int i = 0; i < 10; ++i)
        View().ScrollBy({-3, 0});
    EXPECT_EQ(Horizontal().value(), 100);
    View().ScrollBy({4, 0});
    Horizontal().setValue(200);
    View().ScrollBy({4, 0});
    EXPECT_EQ(Horizontal().value(), 200) << "What was owed at another place counts no more.";
}

TEST_F(ViewLayout, BringsAPixelToTheMiddle) {
    Show(1000, 800, 2.0);
    View().CenterOn(400, 300);
    EXPECT_NEAR(View().ViewerPosition(400, 300).x(), Width() / 2.0, 1);
    EXPECT_NEAR(View().ViewerPosition(400, 300).y(), Height() / 2.0, 1);
    View().CenterOn(0, 799);
    EXPECT_EQ(Horizontal().value(), 0);
    EXPECT_EQ(Vertical().value(), Vertical().maximum());
}

TEST_F(ViewLayout, KnowsWhereAPixelIsOnTheScreen) {
    Show(1000, 800, 2.7);
    Horizontal().setValue(321);
    Vertical().setValue(123);
    for (const std::int32_t at : {0, 1, 119, 500, 999}) {
        const QPoint place = View().ViewerPosition(at, at / 2);
        EXPECT_EQ(View().PixelAt(place), (ImagePixel{at, at / 2}));
        EXPECT_EQ(place.x(), std::nearbyint(at * 2.7 - 321));
    }
    EXPECT_EQ(View().ViewerPosition(1e300, -1e300),
              QPoint(std::numeric_limits<int>::max(), std::numeric_limits<int>::min()));
}

TEST_F(ViewLayout, RoundsThePixelUnderAPositionHalfToEven) {
    Show(1000, 800, 2.0);
    EXPECT_EQ(View().PixelAt({21, 23}), (ImagePixel{10, 12}));
    EXPECT_EQ(View().PixelAt({1, 3}), (ImagePixel{0, 2}));
    Horizontal().setValue(10);
    EXPECT_EQ(View().PixelAt({11, 0}), (ImagePixel{10, 0}));
}

TEST_F(ViewLayout, HasNoPixelBesideTheImage) {
    Show(40, 30, 2.7); // 108 × 81 on the screen
    EXPECT_EQ(View().PixelAt({0, 0}), (ImagePixel{0, 0}));
    EXPECT_EQ(View().PixelAt({107, 80}), (ImagePixel{39, 29})) << "Rounded it would be one too many.";
    EXPECT_EQ(View().PixelAt({108, 80}), std::nullopt);
    EXPECT_EQ(View().PixelAt({107, 81}), std::nullopt);
    EXPECT_EQ(View().PixelAt({-1, 0}), std::nullopt);
    EXPECT_EQ(View().PixelAt({0, -1}), std::nullopt);
    Show(400, 300);
    Horizontal().setValue(11);
    EXPECT_EQ(View().PixelAt({-11, 0}), (ImagePixel{0, 0}));
    EXPECT_EQ(View().PixelAt({-12, 0}), std::nullopt);
    EXPECT_EQ(View().PixelAt({388, 0}), (ImagePixel{399, 0}));
    EXPECT_EQ(View().PixelAt({389, 0}), std::nullopt);
    View().Clear();
    EXPECT_EQ(View().PixelAt({0, 0}), std::nullopt);
}

TEST_F(ViewLayout, RaisesAnErrorWhenThePositionOverflows) {
    Show(40000, 800);
    Horizontal().setValue(1);
    constexpr int Most = std::numeric_limits<int>::max();
    EXPECT_THROW(View().PixelAt({Most, 0}), ComponentError);
    EXPECT_EQ(View().PixelAt({Most - 10, 0}), std::nullopt);
}

TEST_F(ViewLayout, WhileBusyAsksNothingAndLaysOutOnceAfterwards) {
    const auto map = Show(1000, 800);
    const auto shown = View().objBitmap();
    map->views.clear();
    View().SetBusy(true);
    EXPECT_TRUE(View().IsBusy());
    window_.ResizeViewer({222, 177});
    Horizontal().setValue(30);
    View().ScrollBy({5, 5});
    View().CenterOn(500, 500);
    View().SetZoom(3);
    View().ZoomAbout(3, {5, 5});
    View().AdjustSize();
    window_.Screen();
    EXPECT_EQ(map->views.size(), 0U);
    EXPECT_EQ(map->Zoom(), 1.0);
    EXPECT_EQ(window_.viewer.Image(), shown);
    View().SetBusy(false);
    ASSERT_EQ(map->views.size(), 1U);
    EXPECT_EQ(map->views[0].width, Width());
    View().SetBusy(false);
    EXPECT_EQ(map->views.size(), 1U);
}
