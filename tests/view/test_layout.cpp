// Scroll ranges, coarse bars, the slider's upper end, and how often a map is asked for its pixels.

#include "base/ComponentError.h"
#include "component/library/PixelImage.h"
#include "tests/view/ViewLayout.h"
#include "view/ZoomSlider.h"

#include <random>

namespace {

using Call = RecordingMap::View;

} // namespace

TEST_F(ViewLayout, AsksOnceForTheVisiblePart) {
    const auto map = Show(1000, 800);
    EXPECT_EQ(map->views, (std::vector<Call>{{0, 0, Width(), Height(), 1.0}}));
}

TEST_F(ViewLayout, AsksForThePartThatBothBarsSelect) {
    const auto map = Show(1000, 800);
    Horizontal().setValue(30);
    Vertical().setValue(40);
    EXPECT_EQ(map->views.at(1), (Call{30, 0, Width(), Height(), 1.0}));
    EXPECT_EQ(map->views.at(2), (Call{30, 40, Width(), Height(), 1.0}));
    map->views.clear();
    View().ChangeHScroll();
    View().ChangeVScroll();
    const Call both{30, 40, Width(), Height(), 1.0};
    EXPECT_EQ(map->views, (std::vector<Call>{both, both}));
}

TEST_F(ViewLayout, AsksOnceWhenANewRangeMovesBothBars) {
    const auto map = Show(1000, 800);
    Horizontal().setValue(Horizontal().maximum());
    Vertical().setValue(Vertical().maximum());
    map->views.clear();
    View().SetZoom(-5);
    ASSERT_EQ(map->views.size(), 1U);
    EXPECT_EQ(map->views[0].left, Horizontal().maximum());
    EXPECT_EQ(map->views[0].top, Vertical().maximum());
}

TEST_F(ViewLayout, AsksOnceWhenTheViewerChangesItsSize) {
    const auto map = Show(1000, 800);
    map->views.clear();
    window_.ResizeViewer({222, 177});
    EXPECT_EQ(map->views, (std::vector<Call>{{0, 0, Width(), Height(), 1.0}}));
    EXPECT_EQ(Horizontal().maximum(), 1000 - Width());
    EXPECT_EQ(Vertical().maximum(), 800 - Height());
}

TEST_F(ViewLayout, ShowsTheAnswerOnlyWhenItIsNew) {
    const auto map = Show(1000, 800);
    const auto shown = View().objBitmap();
    EXPECT_EQ(window_.viewer.Image(), shown);
    map->changed = false;
    Horizontal().setValue(3);
    EXPECT_EQ(View().objBitmap(), shown);
    map->changed = true;
    Horizontal().setValue(4);
    EXPECT_NE(View().objBitmap(), shown);
    EXPECT_EQ(window_.viewer.Image(), View().objBitmap());
}

TEST_F(ViewLayout, AsksForNoMoreThanTheZoomedMap) {
    const auto map = Show(50, 30);
    EXPECT_EQ(map->views.back(), (Call{0, 0, 50, 30, 1.0}));
    EXPECT_EQ(Horizontal().maximum(), 0);
    EXPECT_EQ(Vertical().maximum(), 0);
    const QImage screen = window_.Screen();
    EXPECT_EQ(screen.pixel(49, 29), RecordingMap::Colour);
    EXPECT_EQ(screen.pixel(50, 29), QColor(Qt::magenta).rgb());
    EXPECT_EQ(screen.pixel(49, 30), QColor(Qt::magenta).rgb());
}

TEST_F(ViewLayout, RoundsTheVisibleSizeHalfToEven) {
    for (const auto& [size, zoomed] : {std::pair(21, 10), {23, 12}, {25, 12}, {27, 14}}) {
        const auto map = Show(size, 1000, 0.5);
        EXPECT_EQ(map->views.back().width, zoomed) << size;
        EXPECT_EQ(map->views.back().height, Height());
    }
}

TEST_F(ViewLayout, ShowsATinyMapAsAtLeastOnePixel) {
    const auto map = Show(10, 10, 0.01);
    EXPECT_EQ(map->views.back(), (Call{0, 0, 1, 1, 0.01}));
}

TEST_F(ViewLayout, AsksNothingWithoutAViewersSize) {
    const auto map = Show(1000, 800);
    map->views.clear();
    window_.ResizeViewer({0, 0});
    EXPECT_EQ(map->views.size(), 0U);
}

TEST_F(ViewLayout, SetsTheZoomOfViewAndMap) {
    const auto map = Show(1000, 800);
    View().SetZoom(10);
    EXPECT_EQ(View().Zoom(), std::exp(1.0));
    EXPECT_EQ(map->Zoom(), std::exp(1.0));
    EXPECT_EQ(map->views.back().zoom, std::exp(1.0));
}

TEST_F(ViewLayout, TakesTheZoomOfAMapAndDoesNotWriteIt) {
    const auto map = Show(1000, 800, 0.3);
    EXPECT_EQ(View().Zoom(), 0.3);
    EXPECT_EQ(map->zoomsWritten, 1) << "the test's own";
    View().SetViewer(&window_.viewer);
    EXPECT_EQ(View().Zoom(), 1.0);
    EXPECT_EQ(map->Zoom(), 0.3);
}

TEST_F(ViewLayout, KeepsItsZoomWhenTheMapRefuses) {
    const auto map = Show(1000, 800, 0.3);
    map->fails = true;
    EXPECT_THROW(View().SetZoom(5), ComponentError);
    EXPECT_THROW(View().ZoomAbout(5, {3, 3}), ComponentError);
    map->fails = false;
    EXPECT_THROW(View().SetZoom(100000), ComponentError);
    EXPECT_EQ(View().Zoom(), 0.3);
    EXPECT_EQ(map->Zoom(), 0.3);
}

TEST_F(ViewLayout, KeepsItsImageWhenTheMapFails) {
    const auto map = Show(1000, 800);
    const auto shown = View().objBitmap();
    map->fails = true;
    Horizontal().setValue(30);
    Vertical().setValue(30);
    window_.ResizeViewer({222, 177});
    View().ScrollBy({3, 3});
    View().CenterOn(500, 500);
    EXPECT_EQ(View().objBitmap(), shown);
    EXPECT_EQ(window_.viewer.Image(), shown);
}

TEST_F(ViewLayout, ReachesTheLastPixelAndShowsNoStripBehindIt) {
    for (const auto& [size, zoom] :
         {std::pair(1000, 1.0), {997, 0.73}, {997, 2.7}, {40003, 1.0}, {30000, 7.389056}, {47777, 6.2}}) {
        const auto map = Show(size, size, zoom);
        Horizontal().setValue(Horizontal().maximum());
        Vertical().setValue(Vertical().maximum());
        const auto zoomed = static_cast<std::int32_t>(std::ceil(size * zoom));
        EXPECT_EQ(map->views.back().left + Width(), zoomed) << size << " at " << zoom;
        EXPECT_EQ(map->views.back().top + Height(), zoomed);
        const auto last = View().PixelAt({Width() - 1, Height() - 1});
        ASSERT_TRUE(last);
        EXPECT_GE(last->x, size - 1 - static_cast<int>(1 / zoom));
        EXPECT_LT(last->x, size);
        EXPECT_LE(Horizontal().maximum(), 32767);
    }
}

TEST_F(ViewLayout, IsCoarseAboveWhat16BitsHold) {
    Show(32767 + Width(), 32768 + Height());
    EXPECT_FALSE(View().HorizontalIsCoarse());
    EXPECT_EQ(Horizontal().maximum(), 32767);
    EXPECT_TRUE(View().VerticalIsCoarse());
    EXPECT_EQ(Vertical().maximum(), 3277);
}

TEST_F(ViewLayout, OfACoarseBarShowsThePartAtTenTimesItsValue) {
    const auto map = Show(40000, 200);
    Horizontal().setValue(150);
    EXPECT_EQ(map->views.back().left, 1500);
    EXPECT_EQ(View().HorizontalOffset(), 1500);
    EXPECT_EQ(View().VerticalOffset(), 0);
    EXPECT_EQ(View().PixelAt({7, 3}), (ImagePixel{1507, 3}));
}

TEST_F(ViewLayout, KeepsItsPartWhenABarBecomesCoarseOrFine) {
    const auto map = Show(32767 + Width(), 800);
    Horizontal().setValue(8000);
    window_.ResizeViewer({100, 121});
    ASSERT_TRUE(View().HorizontalIsCoarse());
    EXPECT_EQ(Horizontal().value(), 800);
    EXPECT_EQ(map->views.back().left, 8000);
    window_.ResizeViewer({161, 121});
    ASSERT_FALSE(View().HorizontalIsCoarse());
    EXPECT_EQ(Horizontal().value(), 8000);
}

TEST_F(ViewLayout, LaidOutAgainStaysAtTheEnd) {
    Show(40003, 40003);
    Horizontal().setValue(Horizontal().maximum());
    const std::int32_t offset = View().HorizontalOffset();
    View().AdjustSize();
    EXPECT_EQ(Horizontal().value(), Horizontal().maximum());
    EXPECT_EQ(View().HorizontalOffset(), offset);
}

TEST_F(ViewLayout, LowersTheSlidersUpperEndSoThatAllCanBeReached) {
    Show(1000, 1000);
    EXPECT_EQ(View().HighestSliderPosition(), 20);
    Show(30000, 30000);
    EXPECT_EQ(View().HighestSliderPosition(), 20);
    Show(50000, 20);
    EXPECT_EQ(View().HighestSliderPosition(), 18); // 50,000 · e^1.9 = 334,295
    Show(20, 100000);
    EXPECT_EQ(View().HighestSliderPosition(), 11); // 100,000 · e^1.2 = 332,012
    Show(2000000000, 20);
    EXPECT_EQ(View().HighestSliderPosition(), -50);
}

TEST_F(ViewLayout, TheViewerCountsForTheSlidersUpperEnd) {
    const double most = 327670.0 + Width();
    const auto size = static_cast<std::int32_t>(most);
    Show(size, 10);
    EXPECT_EQ(View().HighestSliderPosition(), 0);
    Show(size + 1, 10);
    EXPECT_EQ(View().HighestSliderPosition(), -1);
}

TEST_F(ViewLayout, AtAnyOfferedPositionKeepsWithin16Bits) {
    std::mt19937 random(7);
    for (int round = 0; round < 300; ++round) {
        const auto size = [&] {
            return static_cast<std::int32_t>(std::exp(std::uniform_real_distribution(0.0, 13.0)(random)));
        };
        const auto map = Show(size(), size());
        const std::int32_t highest = View().HighestSliderPosition();
        for (std::int32_t position = LowestSliderPosition; position <= highest; ++position) {
            View().SetZoom(position);
            for (const QScrollBar* bar : {&Horizontal(), &Vertical()}) {
                ASSERT_EQ(bar->minimum(), 0);
                ASSERT_LE(bar->maximum(), 32767);
                ASSERT_LE(bar->pageStep(), 32767);
            }
        }
        Horizontal().setValue(Horizontal().maximum());
        const Call& last = map->views.back();
        ASSERT_GE(last.left + last.width, std::nearbyint(map->Width() * map->Zoom()));
    }
}

TEST_F(ViewLayout, AZoomBeyondTheSliderStaysWithin16Bits) {
    const auto map = Show(30000, 30000, 1e9);
    EXPECT_EQ(Horizontal().maximum(), 32767);
    Horizontal().setValue(32767);
    EXPECT_EQ(map->views.back().left, 327670);
}

TEST_F(ViewLayout, SaysThatMarksHaveToBePlacedAnew) {
    int changes = 0;
    View().OnViewChanged = [&] { ++changes; };
    Show(1000, 800);
    EXPECT_EQ(changes, 1);
    Horizontal().setValue(3);
    View().SetZoom(3);
    window_.ResizeViewer({222, 177});
    EXPECT_EQ(changes, 4);
    View().Clear();
    EXPECT_EQ(changes, 5);
}

TEST_F(ViewLayout, OfNothingHasNoSize) {
    EXPECT_EQ(View().MapWidth(), 0);
    EXPECT_EQ(View().MapHeight(), 0);
    View().AdjustSize();
    EXPECT_EQ(Horizontal().maximum(), 0);
    EXPECT_EQ(View().HighestSliderPosition(), 20);
}

TEST_F(ViewLayout, TakesTheOwnersSizeBeforeTheImages) {
    View().SetObjBitmap(std::make_shared<PixelImage>(Bitmap(30, 20)));
    EXPECT_EQ(View().MapWidth(), 30);
    EXPECT_EQ(View().MapHeight(), 20);
    View().SetMapWidth(300);
    View().SetMapHeight(200);
    EXPECT_EQ(View().MapWidth(), 300);
    EXPECT_EQ(View().MapHeight(), 200);
    View().SetMapWidth(0);
    EXPECT_EQ(View().MapWidth(), 30);
}

TEST_F(ViewLayout, KnowsTheMapsSizeAlsoWhenNobodySetIt) {
    const auto map = std::make_shared<RecordingMap>(1000, 800);
    View().SetMap(map);
    View().AdjustSize();
    View().AdjustSize();
    EXPECT_EQ(Horizontal().maximum(), 1000 - Width());
    EXPECT_EQ(Vertical().maximum(), 800 - Height());
}

TEST_F(ViewLayout, IsForgottenByClear) {
    Show(1000, 800);
    Horizontal().setValue(30);
    View().Clear();
    EXPECT_EQ(View().Map(), nullptr);
    EXPECT_EQ(View().objBitmap(), nullptr);
    EXPECT_EQ(window_.viewer.Image(), nullptr);
    EXPECT_EQ(Horizontal().maximum(), 0);
    EXPECT_EQ(window_.PixelOnScreen({5, 5}), QColor(Qt::magenta).rgb());
}

TEST_F(ViewLayout, OfAnIconMovesTheViewersPositions) {
    View().SetObjBitmap(std::make_shared<PixelImage>(Bitmap(1000, 40000)));
    View().AdjustSize();
    EXPECT_EQ(Horizontal().maximum(), 1000 - Width());
    Horizontal().setValue(31);
    EXPECT_EQ(window_.viewer.HorizontalPosition(), 31);
    Vertical().setValue(150);
    EXPECT_TRUE(View().VerticalIsCoarse());
    EXPECT_EQ(window_.viewer.VerticalPosition(), 1500);
    EXPECT_EQ(View().PixelAt({2, 3}), (ImagePixel{33, 1503}));
}

TEST_F(ViewLayout, OfAMapAfterAnIconBeginsAtTheViewersFirstPixel) {
    View().SetObjBitmap(std::make_shared<PixelImage>(Bitmap(1000, 1000)));
    View().AdjustSize();
    Horizontal().setValue(31);
    Show(1000, 800);
    EXPECT_EQ(window_.viewer.HorizontalPosition(), 0);
    EXPECT_EQ(window_.viewer.VerticalPosition(), 0);
}

TEST(View, LivesWithoutAViewerAndBars) {
    clsBitmapView view;
    view.SetMap(std::make_shared<RecordingMap>(1000, 800));
    view.AdjustSize();
    view.ChangeHScroll();
    view.ScrollBy({3, 3});
    EXPECT_EQ(view.PixelAt({3, 4}), (ImagePixel{3, 4}));
    view.Clear();
}

TEST(View, GoneBeforeItsViewerHearsNoMore) {
    KarvelViewer viewer;
    {
        clsBitmapView view;
        view.SetViewer(&viewer);
    }
    viewer.resize(300, 200);
    Q_EMIT viewer.Resized();
}
