// Real maps in a real window: the very pixels on the screen, and what a click on them gives.

#include "component/Bitmap.h"
#include "tests/component/LibraryFixture.h"
#include "tests/view/ViewWindow.h"
#include "view/ZoomSlider.h"

#include <random>

namespace {

class MapPixels : public LibraryTest {
protected:
    std::shared_ptr<AtlavexMap> Show(const Sheet& sheet, double zoom = 1.0) {
        auto map = AddMap(*library_, sheet);
        map->SetZoom(zoom);
        Select(map);
        return map;
    }
    void Select(const std::shared_ptr<AtlavexMap>& map) {
        View().SetMap(map);
        View().SetMapWidth(map->Width());
        View().SetMapHeight(map->Height());
        View().AdjustSize();
    }
    clsBitmapView& View() { return window_.view; }

    static QRgb ColourOf(const Sheet& sheet, std::int32_t x, std::int32_t y) {
        const std::uint8_t* p =
            &sheet.pixels[(std::size_t(y) * std::size_t(sheet.width) + std::size_t(x)) * 3];
        return qRgb(p[0], p[1], p[2]);
    }

    /// Compares every pixel of the viewer with the nearest one of the sheet; beyond it with the background.
    void ExpectNearest(const Sheet& sheet) {
        const QImage screen = window_.Screen();
        const auto under = [this](int position, std::int32_t offset, std::int32_t size) {
            const double place = std::nearbyint((position + offset) / View().Zoom());
            return static_cast<std::int32_t>(std::min<double>(place, size - 1));
        };
        const int width = static_cast<int>(std::nearbyint(sheet.width * View().Zoom()));
        const int height = static_cast<int>(std::nearbyint(sheet.height * View().Zoom()));
        for (int y = 0; y < screen.height(); ++y)
            for (int x = 0; x < screen.width(); ++x) {
                const QRgb wanted = x >= width || y >= height
                                        ? QColor(Qt::magenta).rgb()
                                        : ColourOf(sheet, under(x, View().HorizontalOffset(), sheet.width),
                                                   under(y, View().VerticalOffset(), sheet.height));
                ASSERT_EQ(screen.pixel(x, y), wanted) << x << ", " << y;
            }
    }

    ViewWindow window_;
    std::unique_ptr<AtlavexLibrary> library_ = NewLibrary();
};

} // namespace

TEST_F(MapPixels, AreTheImagesOwnAtFullSize) {
    const Sheet sheet = MakeSheet(PixelFormat::Rgb, 900, 700);
    Show(sheet);
    ExpectNearest(sheet);
    window_.horizontal.setValue(101);
    window_.vertical.setValue(77);
    ExpectNearest(sheet);
    window_.horizontal.setValue(window_.horizontal.maximum());
    window_.vertical.setValue(window_.vertical.maximum());
    ExpectNearest(sheet);
}

TEST_F(MapPixels, AreTheNearestAt270Percent) {
    const Sheet sheet = MakeSheet(PixelFormat::Rgb, 900, 700);
    Show(sheet, 2.7);
    ExpectNearest(sheet);
    window_.horizontal.setValue(333);
    window_.vertical.setValue(222);
    ExpectNearest(sheet);
    window_.horizontal.setValue(window_.horizontal.maximum());
    window_.vertical.setValue(window_.vertical.maximum());
    ExpectNearest(sheet);
}

TEST_F(MapPixels, OfASmallMapStandAtTheUpperLeft) {
    const Sheet sheet = MakeSheet(PixelFormat::Rgb, 31, 17);
    Show(sheet);
    ExpectNearest(sheet);
    View().SetZoom(10);
    ExpectNearest(sheet);
}

TEST_F(MapPixels, BelowFullSizeAreThoseTheMapRenders) {
    const Sheet sheet = MakeSheet(PixelFormat::Rgb, 1200, 900);
    const auto other = NewLibrary();
    const auto twin = AddMap(*other, sheet);
    Show(sheet);
    for (const std::int32_t position : {-3, -7, -13}) {
        View().SetZoom(position);
        View().ScrollBy({37, 21});
        twin->SetZoom(View().Zoom());
        const QSize size = window_.Place().size();
        std::shared_ptr<const AtlavexImage> image;
        ASSERT_TRUE(twin->RenderView(View().HorizontalOffset(), View().VerticalOffset(), size.width(),
                                     size.height(), image));
        const QImage screen = window_.Screen();
        for (int y = 0; y < size.height(); ++y)
            for (int x = 0; x < size.width(); ++x)
                ASSERT_EQ(screen.pixel(x, y), image->Pixels()->Row(y)[x]) << x << ", " << y;
    }
}

TEST_F(MapPixels, AreThoseThatAClickGives) {
    const Sheet narrow = MakeSheet(PixelFormat::Rgb, 400, 300), wide = MakeSheet(PixelFormat::Rgb, 6000, 40),
                high = MakeSheet(PixelFormat::Rgb, 40, 6000);
    QPoint clicked;
    QObject::connect(&window_.viewer, &KarvelViewer::Clicked, [&](QPoint at) { clicked = at; });
    std::mt19937 random(11);
    const auto upTo = [&](int most) { return std::uniform_int_distribution(0, most)(random); };
    for (const Sheet* sheet : {&narrow, &wide, &high}) {
        Show(*sheet);
        for (int round = 0; round < 40; ++round) {
            View().SetZoom(upTo(20));
            window_.horizontal.setValue(upTo(window_.horizontal.maximum()));
            window_.vertical.setValue(upTo(window_.vertical.maximum()));
            const QImage screen = window_.Screen();
            for (int click = 0; click < 20; ++click) {
                const QPoint at(upTo(screen.width() - 1), upTo(screen.height() - 1));
                window_.SendMouse(QEvent::MouseButtonPress, at, Qt::LeftButton, Qt::LeftButton);
                window_.SendMouse(QEvent::MouseButtonRelease, at, Qt::LeftButton);
                ASSERT_EQ(clicked, at);
                const std::optional<ImagePixel> pixel = View().PixelAt(clicked);
                if (!pixel) {
                    ASSERT_EQ(screen.pixel(at), QColor(Qt::magenta).rgb());
                } else if (screen.pixel(at) != QColor(Qt::magenta).rgb()) {
                    ASSERT_EQ(screen.pixel(at), ColourOf(*sheet, pixel->x, pixel->y))
                        << at.x() << ", " << at.y() << " at " << View().Zoom();
                } else {
                    // A map smaller than the viewer is as large as its size times the zoom, rounded; of its
                    // last pixel less than half a screen pixel may be cut off.
                    EXPECT_TRUE(pixel->x == sheet->width - 1 || pixel->y == sheet->height - 1);
                }
            }
        }
    }
}

TEST_F(MapPixels, OfAWideMapAreReachedThroughACoarseBar) {
    const Sheet sheet = MakeSheet(PixelFormat::Rgb, 6000, 40);
    Show(sheet);
    View().SetZoom(20);
    ASSERT_TRUE(View().HorizontalIsCoarse());
    ASSERT_FALSE(View().VerticalIsCoarse());
    window_.horizontal.setValue(150);
    EXPECT_EQ(View().HorizontalOffset(), 1500);
    ExpectNearest(sheet);
    window_.horizontal.setValue(window_.horizontal.maximum());
    ExpectNearest(sheet);
}

TEST_F(MapPixels, ComeBackWhenAMapIsShownAgain) {
    const Sheet first = MakeSheet(PixelFormat::Rgb, 400, 300, 1),
                second = MakeSheet(PixelFormat::Rgb, 400, 300, 2);
    const auto firstMap = Show(first);
    const auto secondMap = Show(second);
    ExpectNearest(second);
    Select(firstMap);
    ExpectNearest(first);
    Select(firstMap);
    ExpectNearest(first);
    View().Clear();
    Select(firstMap);
    ExpectNearest(first);
    Select(secondMap);
    ExpectNearest(second);
}

TEST_F(MapPixels, FollowTheViewersSize) {
    const Sheet sheet = MakeSheet(PixelFormat::Rgb, 900, 700);
    Show(sheet);
    window_.horizontal.setValue(100);
    for (const QSize& size : {QSize(300, 200), QSize(80, 260), QSize(1, 1), QSize(200, 100)}) {
        window_.ResizeViewer(size);
        ExpectNearest(sheet);
    }
}

TEST_F(MapPixels, FollowARealWheelAndADrag) {
    const Sheet sheet = MakeSheet(PixelFormat::Rgb, 900, 700);
    Show(sheet);
    QObject::connect(&window_.viewer, &KarvelViewer::Turned, [this](QPoint by) { View().ScrollBy(-by); });
    QObject::connect(&window_.viewer, &KarvelViewer::Panned, [this](QPoint by) { View().ScrollBy(-by); });
    const int notch = static_cast<int>(QApplication::wheelScrollLines() * 20 * window_.Ratio());
    window_.SendWheel({5, 5}, {0, -120});
    EXPECT_EQ(View().VerticalOffset(), notch);
    const auto grabbed = View().PixelAt({60, 60});
    ASSERT_TRUE(grabbed);
    window_.SendMouse(QEvent::MouseButtonPress, {60, 60}, Qt::MiddleButton, Qt::MiddleButton);
    window_.SendMouse(QEvent::MouseMove, {20, 31}, Qt::NoButton, Qt::MiddleButton);
    EXPECT_EQ(View().PixelAt({20, 31}), grabbed) << "What was grabbed stays under the pointer.";
    ExpectNearest(sheet);
}

TEST_F(MapPixels, OfARemovedMapStayOnTheScreen) {
    const Sheet sheet = MakeSheet(PixelFormat::Rgb, 900, 700);
    Show(sheet);
    const QImage before = window_.Screen();
    library_->RemoveMap(library_->MapIdAt(1));
    window_.horizontal.setValue(50);
    View().AdjustSize();
    EXPECT_EQ(window_.Screen(), before);
}

TEST_F(MapPixels, StayWhileALibraryIsSaved) {
    const Sheet sheet = MakeSheet(PixelFormat::Rgb, 900, 700);
    Show(sheet);
    int events = 0;
    library_->OnProgress = [&](float) {
        if (++events > 1)
            return;
        window_.ResizeViewer({200, 150});
        window_.Screen();
    };
    View().SetBusy(true);
    library_->SaveToFile(PathOf("map.Atlavex"), {});
    View().SetBusy(false);
    EXPECT_GT(events, 0);
    ExpectNearest(sheet);
}

TEST_F(MapPixels, OfAnIconAreShownAndScrolled) {
    const Sheet sheet = MakeSheet(PixelFormat::Rgb, 500, 400);
    View().SetObjBitmap(AddIcon(*library_, sheet)->Image());
    View().AdjustSize();
    ExpectNearest(sheet);
    window_.horizontal.setValue(45);
    window_.vertical.setValue(window_.vertical.maximum());
    ExpectNearest(sheet);
}
