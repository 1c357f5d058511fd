// The visible part of a map, its changed flag, and the zoom.

#include "component/Bitmap.h"
#include "tests/component/LibraryFixture.h"

#include <limits>

namespace {

class MapViews : public LibraryTest {
protected:
    MapViews() : library_(NewLibrary()), map_(AddMap(*library_, sheet_)) {}

    /// Whether the view changed; the image is kept.
    bool Render(AtlavexMap& map, std::int32_t left, std::int32_t top, std::int32_t width,
                std::int32_t height) {
        return map.RenderView(left, top, width, height, image_);
    }
    bool Render(std::int32_t left = 0, std::int32_t top = 0, std::int32_t width = 100,
                std::int32_t height = 80) {
        return Render(*map_, left, top, width, height);
    }
    std::uint32_t PixelOfSheet(std::int32_t x, std::int32_t y) const {
        const std::uint8_t* p =
            &sheet_.pixels[(std::size_t(y) * std::size_t(sheet_.width) + std::size_t(x)) * 3];
        return 0xff000000U | std::uint32_t{p[0]} << 16 | std::uint32_t{p[1]} << 8 | p[2];
    }

    const Sheet sheet_ = MakeSheet(PixelFormat::Rgb, 400, 300);
    std::unique_ptr<AtlavexLibrary> library_;
    std::shared_ptr<AtlavexMap> map_;
    std::shared_ptr<const AtlavexImage> image_;
};

} // namespace

TEST_F(MapViews, ShowTheSheetsOwnPixelsAtFullSize) {
    ASSERT_TRUE(Render(37, 41, 100, 80));
    ASSERT_NE(image_->Pixels(), nullptr);
    EXPECT_EQ(image_->Width(), 100);
    EXPECT_EQ(image_->Height(), 80);
    for (std::int32_t y = 0; y < 80; ++y)
        for (std::int32_t x = 0; x < 100; ++x)
            ASSERT_EQ(image_->Pixels()->Row(y)[x], PixelOfSheet(x + 37, y + 41)) << x << ", " << y;
}

TEST_F(MapViews, ChangeWhenAnythingDiffersAndOnlyThen) {
    EXPECT_TRUE(Render());
    EXPECT_FALSE(Render());
    EXPECT_TRUE(Render(1, 0));
    EXPECT_FALSE(Render(1, 0));
    EXPECT_TRUE(Render(1, 1));
    EXPECT_TRUE(Render(1, 1, 101, 80));
    EXPECT_TRUE(Render(1, 1, 101, 81));
    map_->SetZoom(2);
    EXPECT_TRUE(Render(1, 1, 101, 81));
    EXPECT_FALSE(Render(1, 1, 101, 81));
    map_->SetZoom(2);
    EXPECT_FALSE(Render(1, 1, 101, 81));
    EXPECT_TRUE(Render());
}

TEST_F(MapViews, ThatDidNotChangeLeaveTheImageAlone) {
    EXPECT_TRUE(Render());
    const auto shown = image_;
    EXPECT_FALSE(Render());
    EXPECT_EQ(image_, shown);
    image_.reset();
    EXPECT_FALSE(Render());
    EXPECT_EQ(image_, nullptr);
}

TEST_F(MapViews, DoNotChangeByASaveAndStayRight) {
    EXPECT_TRUE(Render());
    const Bitmap before = *image_->Pixels();
    for (const std::string key : {"", "", "key"}) {
        library_->SaveToFile(PathOf("lib.Atlavex"), key);
        EXPECT_FALSE(Render());
        map_->SetMetadata("name", "renamed");
        EXPECT_FALSE(Render());
        EXPECT_TRUE(Render(300, 200));
        EXPECT_EQ(image_->Pixels()->Row(0)[0], PixelOfSheet(300, 200));
        EXPECT_TRUE(Render());
        EXPECT_EQ(image_->Pixels()->pixels, before.pixels);
    }
}

TEST_F(MapViews, OfTwoMapsAreIndependent) {
    const auto other = AddMap(*library_, MakeSheet(PixelFormat::Grey, 400, 300, 2));
    EXPECT_TRUE(Render());
    EXPECT_TRUE(Render(*other, 0, 0, 100, 80));
    EXPECT_FALSE(Render());
    EXPECT_FALSE(Render(*other, 0, 0, 100, 80));
}

TEST_F(MapViews, KeepWhatTheyShowWhileAnOperationRuns) {
    EXPECT_TRUE(Render());
    int asked = 0;
    library_->OnProgress = [&](float) {
        ++asked;
        EXPECT_FALSE(Render(5, 5));
    };
    library_->SaveToFile(PathOf("lib.Atlavex"), {});
    EXPECT_GT(asked, 0);
    EXPECT_TRUE(Render(5, 5));
}

TEST_F(MapViews, BeyondTheMapAreTransparent) {
    ASSERT_TRUE(Render(390, 290, 20, 20));
    EXPECT_EQ(image_->Pixels()->Row(9)[9], PixelOfSheet(399, 299));
    EXPECT_EQ(image_->Pixels()->Row(9)[10], 0U);
    EXPECT_EQ(image_->Pixels()->Row(10)[9], 0U);
    ASSERT_TRUE(Render(-5, -5, 10, 10));
    EXPECT_EQ(image_->Pixels()->Row(4)[4], 0U);
    EXPECT_EQ(image_->Pixels()->Row(5)[5], PixelOfSheet(0, 0));
}

TEST_F(MapViews, OfImpossibleSizesAreRefused) {
    for (const auto& size : {std::pair{0, 10}, {10, 0}, {-1, 10}, {10, 1 << 30}})
        EXPECT_ERROR(Render(0, 0, size.first, size.second), ErrorNumber::InvalidArgument);
}

TEST_F(MapViews, TheZoomIsOneAtFirstAndStoredWithTheMap) {
    EXPECT_EQ(map_->Zoom(), 1.0);
    for (const double zoom : {0.25, 1.0 / 3, 16.0, 1e-9, 1e9}) {
        map_->SetZoom(zoom);
        library_->SaveToFile(PathOf("lib.Atlavex"), {});
        EXPECT_EQ(map_->Zoom(), zoom);
        EXPECT_EQ(MapAt(*Open(PathOf("lib.Atlavex")), 1)->Zoom(), zoom);
    }
}

TEST_F(MapViews, AZoomThatIsNoneIsRefusedAndTheFormerStays) {
    map_->SetZoom(0.5);
    for (const double zoom :
         {0.0, -1.0, std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()})
        EXPECT_ERROR(map_->SetZoom(zoom), ErrorNumber::InvalidArgument);
    EXPECT_EQ(map_->Zoom(), 0.5);
}

TEST_F(MapViews, AnIconHasItsPixelsAtHandAndAWholeMapHasNot) {
    EXPECT_EQ(map_->Pixels(), nullptr);
    EXPECT_NE(AddIcon(*library_, MakeSheet(PixelFormat::Rgb, 3, 3))->Image()->Pixels(), nullptr);
}
