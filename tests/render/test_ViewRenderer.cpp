#include "base/CheckedNumbers.h"
#include "base/ComponentError.h"
#include "component/render/ViewRenderer.h"
#include "tests/render/DrawnMap.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace {

std::shared_ptr<ViewMemory> NewMemory() {
    return std::make_shared<ViewMemory>();
}

/// The pixel that a click at this place of the view hits: the editor's rule, clamped to the last pixel.
std::int32_t Clicked(std::int32_t screen, std::int32_t offset, std::int32_t size, double zoom) {
    const std::int32_t position = CheckedAdd(screen, offset);
    return std::min(CheckedRound<std::int32_t>(position / zoom), size - 1);
}

bool Shows(std::int32_t screen, std::int32_t offset, std::int32_t size, double zoom) {
    const double position = static_cast<double>(screen) + offset;
    return position >= 0 && position < size * zoom;
}

std::uint32_t ExpectedNearest(const Bitmap& map, const ViewRequest& request, std::int32_t x, std::int32_t y) {
    if (!Shows(x, request.left, map.width, request.zoom) || !Shows(y, request.top, map.height, request.zoom))
        return 0;
    return map.Row(
        Clicked(y, request.top, map.height, request.zoom))[Clicked(x, request.left, map.width, request.zoom)];
}

void ExpectNearest(DrawnMap& map, const ViewRequest& request) {
    ViewRenderer renderer(map.Layout(), map, NewMemory());
    std::shared_ptr<const Bitmap> view;
    ASSERT_TRUE(renderer.Render(request, view));
    ASSERT_EQ(view->width, request.width);
    ASSERT_EQ(view->height, request.height);
    ASSERT_EQ(view->pixels.size(),
              static_cast<std::size_t>(request.width) * static_cast<std::size_t>(request.height));
    int wrong = 0;
    for (std::int32_t y = 0; y < view->height; ++y)
        for (std::int32_t x = 0; x < view->width; ++x)
            wrong += view->Row(y)[x] != ExpectedNearest(map.Level(0), request, x, y);
    EXPECT_EQ(wrong, 0) << "zoom " << request.zoom << " at " << request.left << "," << request.top;
}

int LevelOf(const PyramidLayout& layout, double zoom) {
    int level = 0;
    while (level + 1 < layout.Levels() && zoom <= 1.0 / (2 << level))
        ++level;
    return level;
}

void ExpectSmooth(DrawnMap& map, const ViewRequest& request, double tolerance) {
    ViewRenderer renderer(map.Layout(), map, NewMemory());
    std::shared_ptr<const Bitmap> view;
    ASSERT_TRUE(renderer.Render(request, view));
    const int number = LevelOf(map.Layout(), request.zoom);
    const Bitmap& level = map.Level(number);
    const double step = 1 / (request.zoom * (1 << number));
    double worst = 0;
    for (std::int32_t y = 0; y < view->height; ++y)
        for (std::int32_t x = 0; x < view->width; ++x) {
            const bool shown = Shows(x, request.left, map.Layout().Width(), request.zoom) &&
                               Shows(y, request.top, map.Layout().Height(), request.zoom);
            const double px = x + request.left, py = y + request.top;
            for (const int shift : {0, 8, 16, 24}) {
                const double expected = !shown      ? 0
                                        : step == 1 ? MeanOver(level, shift, px, px + 1, py, py + 1)
                                                    : MeanAround(level, number, shift, px / request.zoom,
                                                                 py / request.zoom, request.zoom);
                worst = std::max(worst, std::abs(expected - (view->Row(y)[x] >> shift & 0xFF)));
            }
        }
    EXPECT_LE(worst, tolerance) << "zoom " << request.zoom << " at " << request.left << "," << request.top;
}

ErrorNumber FaultOf(ViewRenderer& renderer, const ViewRequest& request) {
    std::shared_ptr<const Bitmap> view;
    try {
        renderer.Render(request, view);
    } catch (const ComponentError& error) {
        return error.Number();
    }
    return ErrorNumber::Failed;
}

} // namespace

TEST(ViewRenderer, ShowsThePixelThatAClickHitsFromZoomOneUpwards) {
    DrawnMap map(SpeckledPicture(301, 217), 64, 80, PixelFormat::Rgb);
    for (const double zoom : {1.0, 1.25, 1.5, 2.0, 3.0, 3.7, 4.0, 7.77, 16.0, 100.0})
        for (const std::int32_t offset : {-57, -1, 0, 1, 33, 210, 299}) {
            ExpectNearest(map, {offset, offset / 2, 200, 150, zoom});
            const auto end = static_cast<std::int32_t>(301 * zoom);
            ExpectNearest(map, {end - 100, static_cast<std::int32_t>(217 * zoom) - 75, 200, 150, zoom});
        }
}

TEST(ViewRenderer, ShowsEveryKindOfPixel) {
    for (const PixelFormat format : {PixelFormat::Rgb, PixelFormat::Rgba, PixelFormat::Palette}) {
        DrawnMap map(SpeckledPicture(150, 140), 64, 64, format);
        ExpectNearest(map, {-3, -3, 160, 150, 1});
    }
    Bitmap grey = SpeckledPicture(150, 140);
    for (std::uint32_t& pixel : grey.pixels)
        pixel = 0xFF000000 | (pixel & 0xFF) * 0x010101;
    DrawnMap map(grey, 64, 64, PixelFormat::Grey);
    ExpectNearest(map, {-3, -3, 160, 150, 1});
}

TEST(ViewRenderer, ShowsMeansOfTheCoveredPixelsBelowZoomOne) {
    DrawnMap map(SpeckledPicture(701, 517), 64, 64, PixelFormat::Rgb);
    for (const double zoom : {0.99, 0.75, 0.6, 0.5001, 0.3, 0.26, 0.2, 0.13, 0.07})
        for (const std::int32_t offset : {-20, 0, 5, 40})
            ExpectSmooth(map, {offset, offset / 2, 300, 200, zoom}, 3);
}

TEST(ViewRenderer, ShowsTheSmallestLevelSmallerStill) {
    DrawnMap map(SpeckledPicture(701, 517), 64, 64, PixelFormat::Rgb);
    for (const double zoom : {0.05, 0.03, 0.01, 0.002, 1e-6, 1e-300})
        ExpectSmooth(map, {-2, -1, 60, 50, zoom}, 1);
}

TEST(ViewRenderer, CopiesALevelAtItsOwnZoom) {
    DrawnMap map(SpeckledPicture(701, 517), 64, 64, PixelFormat::Rgb);
    for (const double zoom : {0.5, 0.25, 0.125})
        ExpectSmooth(map, {-3, 7, 200, 150, zoom}, 0);
}

TEST(ViewRenderer, KeepsTransparencyBelowZoomOne) {
    Bitmap picture = SlopingPicture(200, 200);
    for (std::int32_t y = 60; y < 140; ++y)
        std::fill_n(picture.Row(y) + 50, 77, 0);
    DrawnMap map(picture, 64, 64, PixelFormat::Rgba);
    ExpectSmooth(map, {-4, -4, 200, 200, 0.8}, 3);
}

/// Where red grows evenly, the mean of what a screen pixel shows is the clicked pixel's own.
TEST(ViewRenderer, DoesNotShiftAZoomedOutMapAgainstItsClicks) {
    DrawnMap map(SlopingPicture(2040, 2040), 256, 256, PixelFormat::Rgb); // eight pixels a step of red
    for (const double zoom : {0.9, 0.51, 0.37, 0.26, 0.11, 0.02}) {
        ViewRenderer renderer(map.Layout(), map, NewMemory());
        std::shared_ptr<const Bitmap> view;
        renderer.Render({0, 0, 200, 200, zoom}, view);
        for (std::int32_t x = 0; x < 200; x += 7) {
            const double clicked = x / zoom / 8.0;
            if (x == 0 || clicked + 1 / zoom / 8 >= 255)
                continue; // cut by the map's edges
            EXPECT_NEAR(view->Row(20)[x] >> 16 & 0xFF, clicked, 1.5) << zoom << " " << x;
        }
    }
}

TEST(ViewRenderer, KeepsAUniformColourExactly) {
    Bitmap picture(300, 300);
    std::fill(picture.pixels.begin(), picture.pixels.end(), 0xFFFE01C7);
    DrawnMap map(picture, 128, 64, PixelFormat::Rgb);
    for (const double zoom : {0.97, 0.61, 0.333, 0.01}) {
        ViewRenderer renderer(map.Layout(), map, NewMemory());
        std::shared_ptr<const Bitmap> view;
        const auto shown = static_cast<std::int32_t>(std::ceil(300 * zoom));
        renderer.Render({0, 0, shown, shown, zoom}, view);
        EXPECT_EQ(std::count(view->pixels.begin(), view->pixels.end(), 0xFFFE01C7),
                  std::int64_t{shown} * shown)
            << zoom;
    }
}

TEST(ViewRenderer, IsTransparentWhereThereIsNoMap) {
    DrawnMap map(SpeckledPicture(100, 100), 64, 64, PixelFormat::Rgb);
    ViewRenderer renderer(map.Layout(), map, NewMemory());
    constexpr std::int32_t low = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t high = std::numeric_limits<std::int32_t>::max();
    for (const ViewRequest& request : {ViewRequest{low, low, 50, 50, 1}, ViewRequest{high, high, 50, 50, 1},
                                       ViewRequest{-50, 0, 50, 50, 2}, ViewRequest{100, 0, 50, 50, 1},
                                       ViewRequest{0, 25, 50, 50, 0.25}, ViewRequest{high, 0, 9, 9, 1e-9}}) {
        std::shared_ptr<const Bitmap> view;
        // Both pictures that are drawn into have shown the map before.
        for (const std::int32_t left : {0, 1})
            renderer.Render({left, 0, 50, 50, 1}, view);
        ASSERT_TRUE(renderer.Render(request, view));
        EXPECT_EQ(std::count(view->pixels.begin(), view->pixels.end(), 0U),
                  static_cast<std::int64_t>(view->pixels.size()));
    }
}

TEST(ViewRenderer, ShowsTheFirstPixelAtAnEnormousZoom) {
    DrawnMap map(SpeckledPicture(100, 100), 64, 64, PixelFormat::Rgb);
    ViewRenderer renderer(map.Layout(), map, NewMemory());
    std::shared_ptr<const Bitmap> view;
    renderer.Render({2147483000, 0, 600, 3, 1e300}, view);
    EXPECT_EQ(view->Row(1)[599], map.Level(0).Row(0)[0]);
}

TEST(ViewRenderer, AnswersThatNothingChangedForTheSameRequest) {
    DrawnMap map(SpeckledPicture(100, 100), 64, 64, PixelFormat::Rgb);
    ViewRenderer renderer(map.Layout(), map, NewMemory());
    std::shared_ptr<const Bitmap> view, untouched;
    EXPECT_TRUE(renderer.Render({0, 0, 50, 50, 1}, view));
    EXPECT_FALSE(renderer.Render({0, 0, 50, 50, 1}, untouched));
    EXPECT_EQ(untouched, nullptr);
    EXPECT_TRUE(renderer.Render({1, 0, 50, 50, 1}, view));
    EXPECT_TRUE(renderer.Render({0, 0, 50, 50, 1}, view));
    renderer.ForgetAnswer();
    EXPECT_TRUE(renderer.Render({0, 0, 50, 50, 1}, view)) << "Whoever has lost it is answered.";
}

TEST(ViewRenderer, ReadsNoTileTwiceWhileItIsKept) {
    DrawnMap map(SpeckledPicture(640, 640), 64, 64, PixelFormat::Rgb);
    ViewRenderer renderer(map.Layout(), map, NewMemory());
    std::shared_ptr<const Bitmap> view;
    renderer.Render({0, 0, 640, 640, 1}, view);
    EXPECT_EQ(map.Reads(), 100);
    renderer.Render({10, 10, 640, 640, 1}, view);
    renderer.Render({10, 10, 640, 640, 5}, view);
    EXPECT_EQ(map.Reads(), 100);
}

TEST(ViewRenderer, HatchesADamagedTileAndDrawsTheRest) {
    DrawnMap map(SpeckledPicture(200, 200), 64, 64, PixelFormat::Rgb);
    map.Damage(0, 1, 1);
    map.Garble(0, 2, 0);
    ViewRenderer renderer(map.Layout(), map, NewMemory());
    std::shared_ptr<const Bitmap> view;
    renderer.Render({0, 0, 200, 200, 1}, view);
    const auto same = [&](std::int32_t row, std::int32_t column) {
        int count = 0;
        for (std::int32_t y = row * 64; y < row * 64 + 64; ++y)
            for (std::int32_t x = column * 64; x < column * 64 + 64; ++x)
                count += view->Row(y)[x] == map.Level(0).Row(y)[x];
        return count;
    };
    for (std::int32_t row = 0; row < 3; ++row)
        for (std::int32_t column = 0; column < 3; ++column) {
            const bool hatched = (row == 1 && column == 1) || (row == 2 && column == 0);
            EXPECT_EQ(same(row, column), hatched ? 0 : 64 * 64) << row << " " << column;
        }
    EXPECT_NE(view->Row(64)[64], view->Row(64)[72]);
    const int reads = map.Reads();
    renderer.Render({1, 1, 200, 200, 1}, view);
    EXPECT_EQ(map.Reads(), reads);
}

TEST(ViewRenderer, DrawsTheSameWithAnyNumberOfThreads) {
    DrawnMap map(SpeckledPicture(2000, 1500), 64, 64, PixelFormat::Rgb);
    for (const double zoom : {1.0, 0.7, 2.5}) {
        std::shared_ptr<const Bitmap> expected;
        ViewRenderer(map.Layout(), map, std::make_shared<ViewMemory>(1))
            .Render({20, 30, 1500, 1000, zoom}, expected);
        for (const int threads : {2, 3, 16}) {
            std::shared_ptr<const Bitmap> view;
            ViewRenderer(map.Layout(), map, std::make_shared<ViewMemory>(threads))
                .Render({20, 30, 1500, 1000, zoom}, view);
            EXPECT_EQ(view->pixels, expected->pixels) << threads;
        }
    }
}

TEST(ViewRenderer, DrawsAScrolledOrResizedViewAsOneDrawnAnew) {
    DrawnMap map(SpeckledPicture(700, 500), 64, 80, PixelFormat::Rgba);
    for (const double zoom : {0.01, 0.05, 0.3, 0.5, 0.7, 0.99, 1.0, 1.5, 3.7}) {
        std::mt19937 random(1);
        std::uniform_int_distribution<std::int32_t> step(-40, 40), size(150, 260);
        ViewRenderer renderer(map.Layout(), map, NewMemory());
        ViewRequest request{-20, -20, 200, 180, zoom};
        for (int i = 0; i < 40; ++i) {
            std::shared_ptr<const Bitmap> view, anew;
            renderer.Render(request, view);
            ViewRenderer(map.Layout(), map, NewMemory()).Render(request, anew);
            ASSERT_EQ(view->pixels, anew->pixels) << zoom << " step " << i;
            request.left += i == 20 ? 100000 : i == 21 ? -100000 : step(random);
            request.top += step(random);
            if (i % 5 == 0)
                request.width = size(random), request.height = size(random);
            if (i % 13 == 12)
                request.zoom = request.zoom == zoom ? zoom * 1.25 : zoom;
        }
    }
}

TEST(ViewRenderer, LeavesPicturesThatAreHeldAsTheyAre) {
    DrawnMap map(SpeckledPicture(300, 300), 64, 64, PixelFormat::Rgb);
    ViewRenderer renderer(map.Layout(), map, NewMemory());
    std::vector<std::shared_ptr<const Bitmap>> held(6);
    std::vector<Bitmap> copies;
    for (std::int32_t i = 0; i < 6; ++i) {
        renderer.Render({7 * i, 5 * i, 100, 100, 1}, held[static_cast<std::size_t>(i)]);
        copies.push_back(*held[static_cast<std::size_t>(i)]);
    }
    for (std::size_t i = 0; i < held.size(); ++i)
        EXPECT_EQ(held[i]->pixels, copies[i].pixels) << i;
}

TEST(ViewRenderer, SharesMemoryWithAnotherMapWithoutMixingThem) {
    DrawnMap first(SpeckledPicture(300, 300), 64, 64, PixelFormat::Rgb);
    DrawnMap second(SpeckledPicture(200, 100), 64, 64, PixelFormat::Palette);
    const auto memory = NewMemory();
    ViewRenderer one(first.Layout(), first, memory), other(second.Layout(), second, memory);
    std::shared_ptr<const Bitmap> shown;
    for (std::int32_t i = 0; i < 12; ++i) {
        const ViewRequest request{i, i, 90, 80, 1};
        const bool ones = i / 3 % 2 == 0;
        (ones ? one : other).Render(request, shown);
        std::shared_ptr<const Bitmap> anew;
        DrawnMap& map = ones ? first : second;
        ViewRenderer(map.Layout(), map, NewMemory()).Render(request, anew);
        EXPECT_EQ(shown->pixels, anew->pixels) << i;
    }
}

TEST(ViewRenderer, TakesNoMoreMemoryForMapsLookedAtOneAfterTheOther) {
    DrawnMap map(SpeckledPicture(4000, 3000), 256, 256, PixelFormat::Rgb);
    const auto memory = NewMemory();
    std::vector<std::unique_ptr<ViewRenderer>> renderers;
    std::shared_ptr<const Bitmap> view;
    for (int i = 0; i < 5; ++i) {
        renderers.push_back(std::make_unique<ViewRenderer>(map.Layout(), map, memory));
        renderers.back()->Render({0, 0, 4000, 3000, 1}, view);
        EXPECT_LE(memory->Tiles().Bytes(), std::size_t{128} << 20) << i;
    }
    EXPECT_GT(memory->Tiles().Bytes(), std::size_t{100} << 20);
    renderers.clear();
    EXPECT_EQ(memory->Tiles().Bytes(), 0U);
}

/// More tiles than one block holds: 20 000 by 9 000 pixels of 64-pixel tiles.
TEST(ViewRenderer, DrawsALargeViewInSeveralBlocks) {
    Bitmap picture(64, 64);
    std::fill(picture.pixels.begin(), picture.pixels.end(), 0xFF123456);
    DrawnMap tile(picture, 64, 64, PixelFormat::Rgb);
    class Repeated : public TileSource {
    public:
        explicit Repeated(std::vector<std::uint8_t> tile) : tile_(std::move(tile)) {}
        std::vector<std::uint8_t> ReadTile(int, std::int32_t, std::int32_t) override { return tile_; }

    private:
        std::vector<std::uint8_t> tile_;
    } repeated(tile.ReadTile(0, 0, 0));
    ViewRenderer renderer(PyramidLayout(20032, 8960, 64, 64), repeated, NewMemory());
    std::shared_ptr<const Bitmap> view;
    renderer.Render({0, 0, 10100, 4600, 0.501}, view);
    const auto across = static_cast<std::int64_t>(std::ceil(20032 * 0.501));
    const auto down = static_cast<std::int64_t>(std::ceil(8960 * 0.501));
    EXPECT_EQ(std::count(view->pixels.begin(), view->pixels.end(), 0xFF123456), across * down);
}

TEST(ViewRenderer, RefusesSizesAndZoomsThatAreNone) {
    DrawnMap map(SpeckledPicture(10, 10), 64, 64, PixelFormat::Rgb);
    ViewRenderer renderer(map.Layout(), map, NewMemory());
    for (const ViewRequest& request :
         {ViewRequest{0, 0, 0, 5, 1}, ViewRequest{0, 0, 5, -1, 1}, ViewRequest{0, 0, 16385, 5, 1},
          ViewRequest{0, 0, 5, 5, 0}, ViewRequest{0, 0, 5, 5, -2},
          ViewRequest{0, 0, 5, 5, std::numeric_limits<double>::quiet_NaN()},
          ViewRequest{0, 0, 5, 5, std::numeric_limits<double>::infinity()}})
        EXPECT_EQ(FaultOf(renderer, request), ErrorNumber::InvalidArgument);
}
