// Fitting, zooming about a point, scrolling by pixels, from the image to the screen and back, and waiting
// while the component is busy.

#include "tests/view/ViewLayout.h"

namespace {

using Call = RecordingMap::Call;

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
    map->calls.clear();
    for (std::int32_t position = 1; position <= 20; ++position) {
        View().ZoomAbout(position, pointer);
        const double x = (View().HorizontalOffset() + 60) / View().Zoom();
        const double y = (View().VerticalOffset() + 50) / View().Zoom();
        // Each step may lose half a zoomed pixel.
        EXPECT_NEAR(x, 360, 0.5 * position);
        EXPECT_NEAR(y, 250, 0.5 * position);
        EXPECT_EQ(map->calls.size(), static_cast<std::size_t>(position));
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

TEST_F(ViewLayout, ScrollsByPixelsAndRendersOnce) {
    const auto map = Show(1000, 800);
    map->calls.clear();
    View().ScrollBy({30, 40});
    EXPECT_EQ(map->calls, (std::vector<Call>{{30, 40, Width(), Height(), 1.0}}));
    View().ScrollBy({-100, -10});
    EXPECT_EQ(map->calls.back(), (Call{0, 30, Width(), Height(), 1.0}));
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
    map->calls.clear();
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
    EXPECT_EQ(map->calls.size(), 0U);
    EXPECT_EQ(map->Zoom(), 1.0);
    EXPECT_EQ(window_.viewer.Image(), shown);
    View().SetBusy(false);
    ASSERT_EQ(map->calls.size(), 1U);
    EXPECT_EQ(map->calls[0].width, Width());
    View().SetBusy(false);
    EXPECT_EQ(map->calls.size(), 1U);
}
