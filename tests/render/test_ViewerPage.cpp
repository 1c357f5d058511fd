#include "component/render/TileExport.h"
#include "component/scaling/Scaling.h"
#include "coordinates/QuorvantGrid.h"
#include "tests/render/DrawnMap.h"
#include "tests/support/RunProgram.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

using testing::HasSubstr;

namespace {

constexpr std::int32_t Width = 1000;
constexpr std::int32_t Height = 700;

Georeference Linear(bool grid) {
    Georeference georeference;
    georeference.kind = ScalingKind::Linear;
    georeference.points = {
        {600000.25, 6100000, 10, 20}, {602000, 6100030, 990, 20}, {599980, 6098700, 20, 690}};
    if (grid)
        georeference.grid = MakeGrid(1, 32).AsNumbers();
    else
        for (ReferencePoint& point : georeference.points)
            point = {(point.x - 600000) / 1e5 - 9, (point.y - 6100000) / 1e5 - 55, point.pixelX,
                     point.pixelY};
    return georeference;
}

Georeference Polar(std::int32_t narrower) {
    Georeference georeference;
    georeference.kind = ScalingKind::Polar;
    georeference.points = {
        {9, 56, 20 + narrower, 10}, {9, 55, 20, 690}, {11, 56, 980 - narrower, 12}, {11, 55, 980, 688}};
    return georeference;
}

/// Exports a map, runs its page and says what that said.
std::string RunPage(const Georeference& georeference, const std::string& name, const std::string& pixels) {
    const TempFolder folder;
    DrawnMap map(SlopingPicture(Width, Height), 256, 256, PixelFormat::Rgb);
    Progress progress;
    ExportTiles({"id", name, map.Layout(), georeference}, map, folder.Path(), progress);
    const ProgramResult result = RunProgram(
        {"node", SOURCE_DIR "/tests/render/run_page.js", (folder / "index.html").string()}, pixels);
    EXPECT_EQ(result.status, 0) << result.err;
    return result.out;
}

} // namespace

TEST(ViewerPage, ComputesTheCoordinatesOfTheScaling) {
    std::string pixels;
    std::vector<PixelPosition> places;
    for (double x = 0; x < Width; x += 99)
        for (double y = 0; y < Height; y += 77.25) {
            places.push_back({x, y});
            pixels += std::to_string(x) + " " + std::to_string(y) + "\n";
        }
    for (const Georeference& georeference :
         {Linear(true), Linear(false), Polar(100), Polar(1), Polar(0), Polar(-15)}) {
        std::istringstream lines(RunPage(georeference, "Sheet", pixels));
        const auto scaling = MakeScaling(georeference);
        std::size_t count = 0;
        for (std::string line; std::getline(lines, line);) {
            if (!line.starts_with("at "))
                continue;
            std::istringstream numbers(line.substr(3));
            WorldPosition found;
            ASSERT_TRUE(numbers >> found.x >> found.y) << line;
            const WorldPosition world = scaling->PixelToWorld(places.at(count++));
            EXPECT_NEAR(found.x, world.x, 1e-14 * std::abs(world.x) * 10);
            EXPECT_NEAR(found.y, world.y, 1e-14 * std::abs(world.y) * 10);
        }
        EXPECT_EQ(count, places.size());
    }
}

TEST(ViewerPage, PrintsCoordinatesAsPeopleReadThem) {
    EXPECT_THAT(RunPage(Linear(true), "Sheet", "10 20\n"), HasSubstr("E 600000.25 m, N 6100000.00 m"));
    EXPECT_THAT(RunPage(Linear(false), "Sheet", "990 20\n"), HasSubstr("54.999700° S, 8.980000° W"));
    EXPECT_THAT(RunPage({}, "Sheet", "10 20\n"), HasSubstr("at - - \n"));
}

TEST(ViewerPage, ShowsTheWholeMapFirstAndMovesAbout) {
    const std::string said = RunPage(Linear(true), "Sheet", "0 0\n");
    for (const char* tile : {"tile 2/0/0.png", "tile 2/3/2.png"})
        EXPECT_THAT(said, HasSubstr(tile));
    EXPECT_THAT(said, HasSubstr("middle Pixel 500, 350: E 60"));
    EXPECT_THAT(said, HasSubstr("zoom 100 %"));
    EXPECT_THAT(said, HasSubstr("wheel Pixel 500, 350: E 60"));
    EXPECT_THAT(said, HasSubstr("zoom 200 %"));
    EXPECT_THAT(said, HasSubstr("pinch zoom 400 %"));
    EXPECT_THAT(said, HasSubstr("\ndrawn\n"));
}

TEST(ViewerPage, LeavesAHostileNameAName) {
    const std::string name = "</title></script><script>alert('1')</script> & \"@MAP@\" @TITLE@ \xFF\x01";
    const std::string said = RunPage(Polar(100), name, "0 0\n");
    EXPECT_THAT(
        said, HasSubstr("title &lt;/title&gt;&lt;/script&gt;&lt;script&gt;alert(&#39;1&#39;)&lt;/script&gt; "
                        "&amp; &quot;@MAP@&quot; @TITLE@ \xEF\xBF\xBD\xEF\xBF\xBD\n"));
    EXPECT_THAT(
        said,
        HasSubstr(
            "name </title></script><script>alert('1')</script> & \"@MAP@\" @TITLE@ \xEF\xBF\xBD\x01\n"));
}

TEST(ViewerPage, NeedsNothingFromElsewhere) {
    const TempFolder folder;
    DrawnMap map(SlopingPicture(100, 100), 64, 64, PixelFormat::Rgb);
    Progress progress;
    ExportTiles({"id", "Sheet", map.Layout(), {}}, map, folder.Path(), progress);
    const std::string page = ReadWholeFile(folder / "index.html");
    EXPECT_THAT(page, HasSubstr("<meta charset=\"utf-8\">"));
    for (const char* link : {"http:", "https:", "//cdn", "<link", " src=\"", "import "})
        EXPECT_THAT(page, testing::Not(HasSubstr(link)));
}
