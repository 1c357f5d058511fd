// What the viewer paints, by the screen's own pixels.

#include "component/library/PixelImage.h"
#include "tests/view/ViewWindow.h"

namespace {

/// An opaque image in which every pixel has its own colour.
std::shared_ptr<PixelImage> Numbered(std::int32_t width, std::int32_t height) {
    Bitmap bitmap(width, height);
    for (std::int32_t y = 0; y < height; ++y)
        for (std::int32_t x = 0; x < width; ++x)
            bitmap.Row(y)[x] = 0xFF000000U | static_cast<std::uint32_t>(y * 1000 + x);
    return std::make_shared<PixelImage>(std::move(bitmap));
}

QRgb NumberAt(int x, int y) {
    return 0xFF000000U | static_cast<std::uint32_t>(y * 1000 + x);
}

const QRgb Background = QColor(Qt::magenta).rgb();

/// Every pixel of the viewer: the image's where it has one at that place, else the background.
void ExpectShows(ViewWindow& window, const QSize& image, const QPoint& position = {}) {
    const QImage screen = window.Screen();
    ASSERT_EQ(screen.size(), window.Place().size());
    const QRect part(-position, image);
    for (int y = 0; y < screen.height(); ++y)
        for (int x = 0; x < screen.width(); ++x) {
            const QRgb wanted =
                part.contains(x, y) ? NumberAt(x + position.x(), y + position.y()) : Background;
            ASSERT_EQ(screen.pixel(x, y), wanted) << x << ", " << y;
        }
}

} // namespace

TEST(KarvelViewer, IsSetByDevicePixels) {
    ViewWindow window;
    EXPECT_EQ(window.viewer.PixelWidth(), window.Place().width());
    EXPECT_EQ(window.viewer.PixelHeight(), window.Place().height());
    EXPECT_NEAR(window.viewer.PixelWidth(), 161 * window.Ratio(), 1);
}

TEST(KarvelViewer, CoversExactlyItsDevicePixels) {
    // Not through Place(): the neighbours say where the viewer begins and ends.
    ViewWindow window;
    QPalette palette;
    palette.setColor(QPalette::Window, Qt::cyan);
    window.viewer.setPalette(palette);
    for (int width = 40; width < 48; ++width)
        for (int x = 0; x < 4; ++x) {
            window.viewer.setGeometry(x, 3, width, 50);
            const QImage screen = window.window.grab().toImage();
            const int y = static_cast<int>(20 * window.Ratio());
            int covered = 0;
            for (int column = 0; column < screen.width() / 2; ++column)
                covered += screen.pixelColor(column, y) == QColor(Qt::cyan);
            EXPECT_EQ(window.viewer.PixelWidth(), covered) << x << ", " << width;
        }
}

TEST(KarvelViewer, ShowsAnImagePixelForPixel) {
    ViewWindow window;
    window.viewer.ShowImage(Numbered(600, 400));
    ExpectShows(window, {600, 400});
}

TEST(KarvelViewer, ShowsAnImagePixelForPixelWhereverItBegins) {
    ViewWindow window({60, 40});
    window.viewer.ShowImage(Numbered(600, 400));
    for (int x = 0; x < 5; ++x)
        for (int width = 60; width < 64; ++width) {
            window.viewer.setGeometry(x, x + 1, width, 40);
            ExpectShows(window, {600, 400});
        }
}

TEST(KarvelViewer, ShowsASmallImageAtTheUpperLeft) {
    ViewWindow window;
    window.viewer.ShowImage(Numbered(37, 23));
    ExpectShows(window, {37, 23});
}

TEST(KarvelViewer, StartsAtItsPositions) {
    ViewWindow window;
    window.viewer.ShowImage(Numbered(600, 400));
    for (const QPoint& position : {QPoint(11, 0), QPoint(0, 29), QPoint(333, 222), QPoint(580, 390)}) {
        window.viewer.SetHorizontalPosition(position.x());
        window.viewer.SetVerticalPosition(position.y());
        ExpectShows(window, {600, 400}, position);
    }
}

TEST(KarvelViewer, TakesAnyPosition) {
    ViewWindow window;
    window.viewer.ShowImage(Numbered(60, 40));
    constexpr int Least = std::numeric_limits<int>::min(), Most = std::numeric_limits<int>::max();
    for (const QPoint& position : {QPoint(-20, -10), QPoint(Most, 0), QPoint(0, Most), QPoint(Least, 0),
                                   QPoint(-5, Least), QPoint(60, 40)}) {
        window.viewer.SetHorizontalPosition(position.x());
        window.viewer.SetVerticalPosition(position.y());
        EXPECT_EQ(window.viewer.HorizontalPosition(), position.x());
        EXPECT_EQ(window.viewer.VerticalPosition(), position.y());
        if (position == QPoint(-20, -10))
            ExpectShows(window, {60, 40}, position);
        else
            ExpectShows(window, {0, 0});
    }
}

TEST(KarvelViewer, ShowsThePaletteThroughTransparentParts) {
    ViewWindow window;
    Bitmap bitmap(20, 20);
    bitmap.Row(3)[4] = 0xFF0000FF;
    bitmap.Row(3)[5] = 0x80008000; // half green, multiplied by its alpha
    window.viewer.ShowImage(std::make_shared<PixelImage>(std::move(bitmap)));
    const QImage screen = window.Screen();
    EXPECT_EQ(screen.pixel(4, 3), 0xFF0000FFU);
    EXPECT_EQ(screen.pixel(3, 3), Background);
    EXPECT_EQ(qGreen(screen.pixel(5, 3)), 0x80);
    EXPECT_NEAR(qRed(screen.pixel(5, 3)), 0x7F, 1);
    QPalette dark;
    dark.setColor(QPalette::Window, QColor(10, 20, 30));
    window.viewer.setPalette(dark);
    EXPECT_EQ(window.PixelOnScreen({3, 3}), qRgb(10, 20, 30));
}

TEST(KarvelViewer, ShowsNothingAfterNothing) {
    ViewWindow window;
    window.viewer.ShowImage(Numbered(600, 400));
    window.viewer.ShowImage(nullptr);
    ExpectShows(window, {0, 0});
    EXPECT_EQ(window.viewer.Image(), nullptr);
    window.viewer.ShowImage(std::make_shared<PixelImage>(Bitmap()));
    ExpectShows(window, {0, 0});
}

TEST(KarvelViewer, PaintsAPartOfItselfLikeTheWhole) {
    ViewWindow window;
    window.viewer.ShowImage(Numbered(600, 400));
    const QImage whole = window.Screen();
    const double ratio = window.Ratio();
    for (const QRect& part : {QRect(3, 3, 11, 7), QRect(10, 21, 33, 1)}) {
        QPixmap drawn = window.viewer.grab(part);
        const QImage image = drawn.toImage();
        // At a ratio of 1.5 the part may begin inside a pixel; whole ones can be compared.
        if (std::floor(ratio) == ratio) {
            EXPECT_EQ(image.pixel(0, 0), whole.pixel(int(part.x() * ratio), int(part.y() * ratio)));
        }
    }
}

TEST(KarvelViewer, SaysWhenItsSizeChanged) {
    ViewWindow window;
    QSignalSpy resized(&window.viewer, &KarvelViewer::Resized);
    window.ResizeViewer({200, 150});
    EXPECT_EQ(resized.count(), 1);
    window.ResizeViewer({200, 150});
    window.Screen();
    QCoreApplication::processEvents();
    EXPECT_EQ(resized.count(), 1);
}

TEST(KarvelViewer, IsReachedByKeyboardAndHasAName) {
    KarvelViewer viewer;
    EXPECT_EQ(viewer.focusPolicy(), Qt::StrongFocus);
    viewer.setAccessibleName("Map");
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&viewer)->text(QAccessible::Name), "Map");
}

TEST(KarvelViewer, DrawsMarksThatAreSeenOnLightAndDark) {
    for (const std::uint32_t ground : {0xFF000000U, 0xFFFFFFFFU, 0xFF808080U}) {
        ViewWindow window;
        Bitmap bitmap(600, 400);
        bitmap.pixels.assign(bitmap.pixels.size(), ground);
        window.viewer.ShowImage(std::make_shared<PixelImage>(std::move(bitmap)));
        for (const auto style :
             {ViewerMarkStyle::ReferencePoint, ViewerMarkStyle::FormerPoint, ViewerMarkStyle::Crosshair}) {
            window.viewer.SetMarks({{QPoint(60, 50), style, "3"}});
            const QImage screen = window.Screen();
            int lighter = 0, darker = 0;
            const int reach = static_cast<int>(14 * window.Ratio());
            for (int y = 50 - reach; y <= 50 + reach; ++y)
                for (int x = 60 - reach; x <= 60 + reach; ++x) {
                    const int difference = qGray(screen.pixel(x, y)) - qGray(ground);
                    lighter += difference > 100;
                    darker += difference < -100;
                }
            EXPECT_GT(lighter + darker, 20) << ground;
            // Far from the mark the image is untouched.
            EXPECT_EQ(screen.pixel(60 + 60, 50), ground);
        }
        window.viewer.SetMarks({});
        EXPECT_EQ(window.PixelOnScreen({60, 50}), ground);
    }
}

TEST(KarvelViewer, CentresAMarkOnItsPixel) {
    ViewWindow window;
    Bitmap bitmap(600, 400);
    bitmap.pixels.assign(bitmap.pixels.size(), 0xFFFFFFFF);
    window.viewer.ShowImage(std::make_shared<PixelImage>(std::move(bitmap)));
    window.viewer.SetMarks({{QPoint(70, 60), ViewerMarkStyle::Crosshair, {}}});
    const QImage screen = window.Screen();
    for (int y = 0; y <= 120; ++y)
        for (int x = 0; x <= 140; ++x) {
            EXPECT_NEAR(qGray(screen.pixel(x, y)), qGray(screen.pixel(140 - x, y)), 2) << x << ", " << y;
            EXPECT_NEAR(qGray(screen.pixel(x, y)), qGray(screen.pixel(x, 120 - y)), 2) << x << ", " << y;
        }
    EXPECT_LT(qGray(screen.pixel(60, 60)), 128);
    EXPECT_EQ(screen.pixel(70, 60), 0xFFFFFFFFU);
}
