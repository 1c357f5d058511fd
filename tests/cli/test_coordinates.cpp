#include "tests/cli/AtlavexTest.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <sstream>

using testing::HasSubstr;

namespace {

using Coordinates = AtlavexTest;

struct Numbers {
    double x = 0;
    double y = 0;
};

std::vector<Numbers> ReadPairs(const std::string& text) {
    std::istringstream stream(text);
    std::vector<Numbers> pairs;
    for (Numbers pair; stream >> pair.x >> pair.y;)
        pairs.push_back(pair);
    return pairs;
}

const Words PolarScaling{"--datum",     "ED50",     "--corner",     "20,20=9,48", "--corner",
                         "10,190=9,47", "--corner", "280,22=11,48", "--corner",   "292,192=11,47"};

std::string ManyPixels() {
    std::string text;
    for (int y = 0; y < 200; y += 7)
        for (int x = 0; x < 300; x += 11)
            text += std::to_string(x) + " " + std::to_string(y) + "\n";
    return text;
}

} // namespace

TEST_F(Coordinates, PixelsBecomeCoordinatesAndBack) {
    const std::string library = ScaledLibrary();
    EXPECT_EQ(Do({"locate", library, "1", "0", "0"}), "500000 6100000\n");
    EXPECT_EQ(Do({"locate", library, "1", "250", "40"}), "500500 6099920\n");
    EXPECT_EQ(Do({"locate", library, "1", "-12.5", "0.25"}), "499975 6099999.5\n");
    const auto found = ReadPairs(Do({"find", library, "1", "500500", "6099920"}));
    EXPECT_NEAR(found.at(0).x, 250, 1e-8);
    EXPECT_NEAR(found.at(0).y, 40, 1e-8);
    EXPECT_NEAR(ReadPairs(Do({"find", library, "1", "-5", "6099920"})).at(0).x, -250002.5, 1e-8);
    EXPECT_NEAR(ReadPairs(Do({"find", library, "1", "--", "-.5", "6099920"})).at(0).x, -250000.25, 1e-8);
}

TEST_F(Coordinates, TheWayThereAndBackEndsAtThePixel) {
    const std::string library = ScaledLibrary();
    Do({"add-map", library, Bmp("polar.bmp")});
    Do(Words{"scale", library, "2"} + PolarScaling);
    const std::string pixels = ManyPixels();
    const auto before = ReadPairs(pixels);
    for (const Words& way : {Words{library, "1"}, Words{library, "2"}, Words{library, "1", "--wgs84"},
                             Words{library, "2", "--wgs84"}}) {
        const std::string world = Do(Words{"locate"} + way, pixels);
        const auto after = ReadPairs(Do(Words{"find"} + way, world));
        ASSERT_EQ(after.size(), before.size());
        for (std::size_t index = 0; index < before.size(); ++index) {
            EXPECT_NEAR(after[index].x, before[index].x, 1e-4);
            EXPECT_NEAR(after[index].y, before[index].y, 1e-4);
        }
    }
}

TEST_F(Coordinates, CornersOfAPolarSheetComeOutAsGiven) {
    const std::string library = ScaledLibrary();
    Do(Words{"scale", library, "1"} + PolarScaling);
    const auto corners = ReadPairs(Do({"locate", library, "1"}, "20 20\n10 190\n280 22\n292 192\n"));
    const std::vector<Numbers> expected{{9, 48}, {9, 47}, {11, 48}, {11, 47}};
    for (std::size_t index = 0; index < expected.size(); ++index) {
        EXPECT_NEAR(corners.at(index).x, expected[index].x, 1e-9);
        EXPECT_NEAR(corners.at(index).y, expected[index].y, 1e-9);
    }
}

TEST_F(Coordinates, ProjectionAndDatumShiftAgreeWithAnotherProgram) {
    const std::string positions = "9 48\n6.5 51.25\n11.75 0.5\n9 -33\n";
    const auto grid = ReadPairs(Do({"project", "--grid", "UTM (etrs89)", "--zone", "32"}, positions));
    const auto shifted = ReadPairs(Do({"shift", "--datum", "OSGB36"}, positions));
    const auto truth = ReadPairs(Python(R"(
from pyproj import Transformer
utm = Transformer.from_pipeline('+proj=pipeline +step +proj=unitconvert +xy_in=deg +xy_out=rad '
                                '+step +proj=utm +zone=32 +ellps=GRS80')
for position in ((9, 48), (6.5, 51.25), (11.75, 0.5), (9, -33)):
    print(*utm.transform(*position))
)"));
    ASSERT_EQ(grid.size(), 4U);
    ASSERT_EQ(shifted.size(), 4U);
    for (std::size_t index = 0; index < truth.size(); ++index) {
        EXPECT_NEAR(grid[index].x, truth[index].x, 1e-3);
        EXPECT_NEAR(grid[index].y, truth[index].y, 1e-3);
    }
}

TEST_F(Coordinates, ProjectAndShiftHaveAWayBack) {
    const std::string positions = "9 48\n8.123456789 47.5\n";
    for (const Words& command :
         {Words{"project", "--grid", "UTM (etrs89)", "--zone", "32"},
          Words{"project", "--grid", "Swiss Grid (ch1903)"}, Words{"shift", "--datum", "ED50"}}) {
        const auto back = ReadPairs(Do(command + Words{"--inverse"}, Do(command, positions)));
        ASSERT_EQ(back.size(), 2U);
        EXPECT_NEAR(back[1].x, 8.123456789, 1e-8);
        EXPECT_NEAR(back[1].y, 47.5, 1e-8);
    }
}

TEST_F(Coordinates, LocateInWgs84IsProjectionAndShiftInOne) {
    const std::string library = ScaledLibrary();
    const std::string world = Do({"locate", library, "1", "30", "40"});
    const std::string own = Do({"project", "--grid", "UTM (etrs89)", "--zone", "32", "--inverse"}, world);
    const auto steps = ReadPairs(Do({"shift", "--datum", "ETRS89"}, own));
    const auto direct = ReadPairs(Do({"locate", library, "1", "30", "40", "--wgs84"}));
    EXPECT_NEAR(direct.at(0).x, steps.at(0).x, 1e-11);
    EXPECT_NEAR(direct.at(0).y, steps.at(0).y, 1e-11);
}

TEST_F(Coordinates, NumbersReadBackToTheSameValue) {
    const std::string library = ScaledLibrary();
    DoDoubted({"scale", library, "1", "--datum", "WGS84", "--point", "0,0=0.1,48.3", "--point",
               "0,97=9.7,47.1", "--point", "89,97=10.3,47.2"});
    const std::string pixels = ManyPixels();
    const auto text = ReadPairs(Do({"locate", library, "1"}, pixels));
    const auto json = DoJson({"locate", library, "1"}, pixels);
    ASSERT_EQ(text.size(), json.size());
    for (std::size_t index = 0; index < text.size(); ++index) {
        EXPECT_EQ(json[index]["x"].get<double>(), text[index].x);
        EXPECT_EQ(json[index]["y"].get<double>(), text[index].y);
    }
}

TEST_F(Coordinates, JsonNamesBothPairs) {
    const std::string library = ScaledLibrary();
    const auto located = DoJson({"locate", library, "1", "250", "40"});
    EXPECT_EQ(located,
              nlohmann::ordered_json::parse(R"({"pixelX":250.0,"pixelY":40.0,"x":500500.0,"y":6099920.0})"));
    EXPECT_TRUE(DoJson({"locate", library, "1", "250", "40", "--wgs84"}).contains("latitude"));
    EXPECT_EQ(DoJson({"find", library, "1"}, "500000 6100000").size(), 1U);
    EXPECT_TRUE(
        DoJson({"project", "--grid", "Finnish Grid", "--zone", "3"}, "27 62\n")[0].contains("northing"));
    EXPECT_TRUE(DoJson({"shift", "--datum", "ED50"}, "9 48\n")[0].contains("datumLongitude"));
    EXPECT_EQ(DoJson({"shift", "--datum", "ED50"}, "").size(), 0U);
}

TEST_F(Coordinates, InputMayHaveCommentsAndDifferentSeparators) {
    const std::string library = ScaledLibrary();
    const std::string answer =
        Do({"locate", library, "1"}, "# pixels\n\n0 0\n  \t\n1\t1\n2;2\r\n 3 ; 3 \n   # more\n+4 4e0");
    EXPECT_EQ(answer, "500000 6100000\n500002 6099998\n500004 6099996\n500006 6099994\n500008 6099992\n");
    EXPECT_EQ(Do({"locate", library, "1"}, ""), "");
}

TEST_F(Coordinates, ALineThatIsNoPairEndsTheWorkAfterTheLinesBeforeIt) {
    const std::string library = ScaledLibrary();
    for (const char* line : {"x", "1", "1 2 3", "1,5 2", "1, 2", "nan 1", "1 inf", "0x10 1", "1 2 #"}) {
        const std::string input = "# head\n0 0\n" + std::string(line) + "\n1 1\n";
        EXPECT_EQ(ExpectFailure(1, {"locate", library, "1"}, "Line 3 ", input), "500000 6100000\n");
        const auto json =
            nlohmann::json::parse(ExpectFailure(1, {"locate", library, "1", "--json"}, "Line 3 ", input));
        EXPECT_EQ(json.size(), 1U);
    }
    ExpectFailure(1, {"locate", library, "1"}, "too long", "0 0\n" + std::string(300000, '1'));
    ExpectFailure(1, {"shift", "--datum", "ED50"}, "Line 2 ", "9 48\n9 91\n");
}

TEST_F(Coordinates, LongInputIsAnsweredLineByLine) {
    const std::string library = ScaledLibrary();
    std::string input;
    for (int line = 0; line < 100000; ++line)
        input += "1 1\n";
    const std::string answer = Do({"locate", library, "1"}, input);
    EXPECT_EQ(std::count(answer.begin(), answer.end(), '\n'), 100000);
}

TEST_F(Coordinates, AMapWithoutScalingHasNoCoordinates) {
    const std::string library = NewLibrary();
    Do({"add-map", library, Bmp("x.bmp")});
    ExpectFailure(4, {"locate", library, "1", "0", "0"}, "not scaled");
    ExpectFailure(4, {"find", library, "1", "0", "0"}, "not scaled");
    ExpectFailure(4, {"locate", library, "1"}, "not scaled", "0 0\n");
}

TEST_F(Coordinates, UnknownSystemsAreNamed) {
    ExpectFailure(2, {"project", "--grid", "nowhere"}, "nowhere");
    ExpectFailure(2, {"project", "--grid", "UTM (etrs89)", "--zone", "61"}, "61");
    ExpectFailure(2, {"shift", "--datum", "nowhere"}, "nowhere");
}

TEST_F(Coordinates, TheCatalogueListsWhatTheOptionsTake) {
    const auto catalogue = DoJson({"catalogue"});
    EXPECT_EQ(catalogue["countries"].size(), 18U);
    EXPECT_EQ(catalogue["grids"].size(), 30U);
    EXPECT_EQ(catalogue["datums"].size(), 27U);
    for (const auto& datum : catalogue["datums"])
        Do({"shift", "--datum", datum["name"]}, "9 48\n");
    for (const auto& grid : catalogue["grids"]) {
        Words command{"project", "--grid", grid["name"]};
        if (grid["zone"] != "none")
            command = command + Words{"--zone", grid["zone"] == "number" ? "32" : grid["zones"][0]["name"]};
        Do(command); // no positions: the names alone must be known
    }
    EXPECT_THAT(Do({"catalogue"}), HasSubstr("\nzone\tBundesmeldenetz\t18\tM31\n"));
    EXPECT_THAT(Do({"catalogue"}), HasSubstr("\ndatum\tED50\t17\n"));
}
