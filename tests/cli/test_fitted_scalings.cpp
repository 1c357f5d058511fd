// Scalings that are fitted to more points than define them, and those that are compared with check points.

#include "tests/cli/AtlavexTest.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

using testing::HasSubstr;
using testing::StartsWith;

namespace {

class FittedScalings : public AtlavexTest {
protected:
    FittedScalings() {
        Do({"new", library_});
        Do({"add-map", library_, Bmp("sheet.bmp"), "--name", "Sheet"});
    }

    Words Scale(const Words& more) const {
        return Words{"scale", library_, "1", "--grid", "UTM (etrs89)", "--zone", "32"} + more;
    }
    /// Two metres a pixel; the fourth corner is half a pixel to the right of where the other three have it.
    Words FourPoints() const {
        return Words{"--point", "0,0=500000,6100000",   "--point", "299,0=500598,6100000",
                     "--point", "0,199=500000,6099602", "--point", "299.5,199=500598,6099602"};
    }
    Words ThreePoints() const {
        return Words{"--point", "0,0=500000,6100000",  "--point", "299,0=500598,6100000",
                     "--point", "0,199=500000,6099602"};
    }
    nlohmann::ordered_json Map() const { return DoJson({"info", library_})["maps"][0]; }
    /// The record of the first map as it is stored.
    std::string Record(const std::string& library) const {
        return Python("import sqlite3, sys\nprint(sqlite3.connect(sys.argv[3]).execute("
                      "'SELECT record FROM map').fetchone()[0].hex())",
                      {library});
    }

    std::string library_ = In("a.Atlavex");
};

} // namespace

TEST_F(FittedScalings, PrintWhatEveryPointIsOffTheWorstFirst) {
    const std::vector<std::string> lines =
        Lines(Do(Scale(FourPoints() + Words{"--point", "150,100=500305,6099800"})));
    ASSERT_EQ(lines.size(), 6U);
    EXPECT_THAT(lines[0], StartsWith("point 5 (150,100=500305,6099800): "));
    EXPECT_THAT(lines[0], HasSubstr(" pixels, "));
    EXPECT_THAT(lines[5], StartsWith("root mean square of the points: "));
}

/// Other programs' least squares give the same scaling and the same residuals.
TEST_F(FittedScalings, AreThoseOfAnotherSolver) {
    const auto fit = DoJson(Scale(FourPoints() + Words{"--point", "150,100=500305,6099800", "--json"}));
    const auto solved = nlohmann::json::parse(Python(R"(
import json, numpy
p = numpy.array([(0, 0), (299, 0), (0, 199), (299.5, 199), (150, 100)], dtype=float)
w = numpy.array([(500000, 6100000), (500598, 6100000), (500000, 6099602), (500598, 6099602), (500305, 6099800)])
m, c = p.mean(0), w.mean(0)
a = numpy.linalg.lstsq(p - m, w - c, rcond=None)[0]
metres = numpy.hypot(*((p - m) @ a + c - w).T)
pixels = numpy.hypot(*((w - c) @ numpy.linalg.inv(a) + m - p).T)
print(json.dumps([metres.tolist(), pixels.tolist(), ((numpy.array([100, 50]) - m) @ a + c).tolist()]))
)"));
    ASSERT_EQ(fit["points"].size(), 5U);
    for (const auto& point : fit["points"]) {
        const std::size_t index = point["number"].get<std::size_t>() - 1;
        EXPECT_NEAR(point["metres"].get<double>(), solved[0][index].get<double>(), 1e-6);
        EXPECT_NEAR(point["pixels"].get<double>(), solved[1][index].get<double>(), 1e-6);
    }
    const auto located = DoJson({"locate", library_, "1", "100", "50", "--json"});
    EXPECT_NEAR(located["x"].get<double>(), solved[2][0].get<double>(), 1e-6);
    EXPECT_NEAR(located["y"].get<double>(), solved[2][1].get<double>(), 1e-6);
}

TEST_F(FittedScalings, KeepTheirPointsAsEntered) {
    Do(Scale(FourPoints()));
    const auto map = Map();
    ASSERT_EQ(map["enteredPoints"].size(), 4U);
    EXPECT_EQ(map["enteredPoints"][3]["pixelX"], 299.5);
    EXPECT_EQ(map["enteredPoints"][3]["x"], 500598);
    EXPECT_EQ(map["referencePoints"].size(), 3U);
    EXPECT_TRUE(map["checkSets"].empty());
    EXPECT_THAT(Do({"info", library_}), HasSubstr("   entered: 299.5,199=500598,6099602\n"));
    Do({"verify", library_});
    Do({"set-grid", library_, "1", "--grid", "UTM (etrs89)", "--zone", "33"});
    EXPECT_EQ(Map()["enteredPoints"], map["enteredPoints"]);
}

TEST_F(FittedScalings, OfThreePointsAreStoredAsEver) {
    EXPECT_EQ(Do(Scale(ThreePoints())), "");
    EXPECT_THAT(Record(library_), StartsWith("01"));
    EXPECT_TRUE(Map()["enteredPoints"].empty());
    Do(Scale(FourPoints()));
    EXPECT_THAT(Record(library_), StartsWith("02"));
    Do(Scale(ThreePoints()));
    EXPECT_THAT(Record(library_), StartsWith("01"));
}

TEST_F(FittedScalings, AreComparedWithCheckPointsWhateverTheyAreMadeFrom) {
    Write("sheet.wld", "2\n0\n0\n-2\n500000\n6100000\n");
    const Words corners{"--corner", "0,0=500000,6100000",   "--corner", "0,199=500000,6099602",
                        "--corner", "299,0=500598,6100000", "--corner", "299,199=500598,6099602"};
    for (const Words& from : {ThreePoints(), corners, Words{"--worldfile", In("sheet.wld")}}) {
        const std::vector<std::string> lines = Lines(Do(
            Scale(from + Words{"--check", "100,50=500200,6099900", "--check", "103.5,46=500200,6099900"})));
        ASSERT_EQ(lines.size(), 3U);
        EXPECT_EQ(lines[0], "check 2 (103.5,46=500200,6099900): 5.315 pixels, 10.630 m");
        EXPECT_EQ(lines[1], "check 1 (100,50=500200,6099900): 0.000 pixels, 0.000 m");
        EXPECT_EQ(lines[2], "root mean square of the checks: 3.758 pixels, 7.517 m");
        const auto sets = Map()["checkSets"];
        ASSERT_EQ(sets.size(), 1U);
        EXPECT_EQ(sets[0]["points"].size(), 2U);
        EXPECT_EQ(sets[0]["points"][1]["pixelX"], 103.5);
    }
}

TEST_F(FittedScalings, AreRefusedWhereAPointIsFartherOffThanItMayBe) {
    Do(Scale(FourPoints() + Words{"--max-residual", "1"}));
    const std::string shown = ExpectFailure(
        1, Scale(FourPoints() + Words{"--point", "150,100=500305,6099800", "--max-residual", "1"}),
        "Point 5 (150,100=500305,6099800) is 2.");
    EXPECT_THAT(shown, StartsWith("point 5 "));
    ExpectFailure(
        1, Scale(ThreePoints() + Words{"--check", "103.5,46=500200,6099900", "--max-residual", "5.3"}),
        "Check 1 (103.5,46=500200,6099900) is 5.315 pixels off, more than --max-residual 5.3; nothing "
        "was written.");
    Do(Scale(ThreePoints() + Words{"--check", "103.5,46=500200,6099900", "--max-residual", "5.4"}));
}

TEST_F(FittedScalings, AreMadeWhileAMapIsAdded) {
    const Words add = Words{"add-map", library_,       In("sheet.bmp"), "--name", "Second",
                            "--grid",  "UTM (etrs89)", "--zone",        "32"} +
                      FourPoints();
    ExpectFailure(1, add + Words{"--max-residual", "0.1"}, "nothing was written");
    const auto fit = DoJson(add + Words{"--check", "100,50=500200,6099900", "--json"});
    EXPECT_EQ(fit["points"].size(), 4U);
    EXPECT_EQ(fit["checks"].size(), 1U);
    EXPECT_EQ(DoJson({"info", library_})["maps"][1]["enteredPoints"].size(), 4U);
}

TEST_F(FittedScalings, RefuseWhatMakesNoSense) {
    ExpectFailure(2, Scale(ThreePoints() + Words{"--max-residual", "1"}),
                  "more than three --point, or --check");
    ExpectFailure(2, Scale(FourPoints() + Words{"--max-residual", "-1"}), "not less than 0 pixels");
    ExpectFailure(2, Scale(FourPoints() + Words{"--max-residual", "much"}), "is not a number");
    ExpectFailure(2, Scale(FourPoints() + Words{"--check", "1,1"}), "--check: '1,1' is not of the form");
    ExpectFailure(2, Scale({"--check", "1,1=1,1"}), "A scaling needs one of");
    ExpectFailure(
        1, Scale({"--point", "0,0=0,0", "--point", "1,1=1,1", "--point", "2,2=2,2", "--point", "3,3=3,4"}),
        "The points lie on one line on the map.");
    ExpectFailure(1,
                  {"scale", library_, "1", "--datum", "ED50", "--point", "0,0=9,48", "--point", "299,0=9,91",
                   "--point", "0,199=9,47", "--point", "299,199=10,47"},
                  "Point 2 would have the latitude 91");
}
