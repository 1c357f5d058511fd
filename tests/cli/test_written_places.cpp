// Coordinates in the ways in which people write them, wherever a command takes one.

#include "tests/cli/AtlavexTest.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <sstream>

using testing::HasSubstr;

namespace {

/// A foot of the United States' surveys, as the list of units rounds 1200/3937 metres, and an international
/// one.
constexpr double SurveyFoot = 0.30480061;
constexpr double Foot = 0.3048;

class WrittenPlaces : public AtlavexTest {
protected:
    WrittenPlaces() {
        Do({"new", library_});
        Do({"add-map", library_, Bmp("sheet.bmp")});
    }
    Words Scale(const Words& more) const { return Words{"scale", library_, "1"} + more; }
    nlohmann::ordered_json Points() const { return DoJson({"info", library_})["maps"][0]["referencePoints"]; }
    void ExpectPoint(std::size_t index, double x, double y) const {
        EXPECT_NEAR(Points().at(index)["x"].get<double>(), x, 1e-9);
        EXPECT_NEAR(Points().at(index)["y"].get<double>(), y, 1e-9);
    }
    void ExpectPair(const std::string& printed, double x, double y, double tolerance = 1e-9) const {
        std::istringstream stream(printed);
        double first = 0, second = 0;
        stream >> first >> second;
        EXPECT_NEAR(first, x, tolerance) << printed;
        EXPECT_NEAR(second, y, tolerance) << printed;
    }

    std::string library_ = In("a.Atlavex");
};

} // namespace

TEST_F(WrittenPlaces, OfPointsMayHaveDegreesMinutesSecondsAndLetters) {
    DoDoubted(Scale({"--datum", "WGS84", "--point", "0,0=48°15'30\"N 9°30'E", "--point", "299,0=E 10 N 48.25",
                     "--point", "0,199=9.5,47.5"}));
    ExpectPoint(0, 9.5, 48 + 15 / 60.0 + 30 / 3600.0);
    ExpectPoint(1, 10, 48.25);
    ExpectPoint(2, 9.5, 47.5);
    DoDoubted(Scale({"--datum", "WGS84", "--corner", "0,0=33°S, 70°30'W", "--corner", "0,199=34 S 70 30 0 W",
                     "--corner", "299,0=-70,-33", "--corner", "299,199=S34 W70"}));
    ExpectPoint(0, -70.5, -33);
    ExpectPoint(1, -70.5, -34);
    ExpectPoint(3, -70, -34);
}

TEST_F(WrittenPlaces, OnAGridMayHaveTheirNorthingFirst) {
    const Words utm{"--grid", "UTM (etrs89)", "--zone", "32"};
    Do(Scale(utm + Words{"--point", "0,0=N 6100000 E 500000", "--point", "299,0=500598 E, 6100000 N",
                         "--point", "0,199=500000,6099602", "--check", "299,199=6099602N 500598E"}));
    ExpectPoint(0, 500000, 6100000);
    ExpectPoint(1, 500598, 6100000);
    EXPECT_EQ(DoJson({"info", library_})["maps"][0]["checkSets"][0]["points"][0]["y"], 6099602);
}

TEST_F(WrittenPlaces, WithoutLettersAreLongitudeFirstAndNothingElse) {
    for (const char* text :
         {"0,0=48°15' 9°30'", "0,0=9°30',48°15'", "0,0=48 15 9 30", "0,0=9.5;48.25", "0,0=9.5 48.25",
          "0,0=48N 9N", "0,0=48°60'N 9°E", "0,0=91N 9E", "0,0=9,5 E 48,25 N"})
        ExpectFailure(
            2, Scale({"--datum", "WGS84", "--point", text, "--point", "9,0=1,1", "--point", "0,9=1,2"}),
            "letters say otherwise");
    ExpectFailure(2,
                  Scale({"--grid", "Swiss Grid", "--point", "0,0=46°N 7°E", "--point", "9,0=1,1", "--point",
                         "0,9=1,2"}),
                  "N 6100000 E 500000");
}

TEST_F(WrittenPlaces, OnAGridMayBeInAnyUnitOfTheCatalogue) {
    const Words utm{"--grid", "UTM (etrs89)", "--zone", "32"};
    const auto points = [](double unit) {
        Words words;
        for (const auto& [pixel, x, y] : {std::tuple("0,0", 1640000.0, 20013000.0),
                                          {"299,0", 1642000.0, 20013000.0},
                                          {"0,199", 1640000.0, 20011600.0}})
            words = words + Words{"--point", std::string(pixel) + "=" + std::to_string(x * Foot / unit) +
                                                 "," + std::to_string(y * Foot / unit)};
        return words;
    };
    for (const auto& [name, unit] :
         {std::pair("Int. feet", Foot), {"U.S. feet", SurveyFoot}, {"yards", 0.9144}, {"meters", 1.0}}) {
        Do(Scale(utm + Words{"--unit", name} + points(unit)));
        // The texts have six decimals.
        EXPECT_NEAR(Points()[0]["x"].get<double>(), 1640000 * Foot, 1e-6) << name;
        EXPECT_NEAR(Points()[2]["y"].get<double>(), 20011600 * Foot, 1e-6) << name;
        ExpectPair(Do({"locate", library_, "1", "0", "0", "--unit", name}), 1640000 * Foot / unit,
                   20013000 * Foot / unit, 2e-6);
        ExpectPair(Do({"find", library_, "1", std::to_string(1642000 * Foot / unit),
                       std::to_string(20013000 * Foot / unit), "--unit", name}),
                   299, 0, 1e-4);
    }
}

TEST_F(WrittenPlaces, HaveNoUnitOfLengthWhereTheyAreDegreesOrAFileSaysThem) {
    const Words three{"--point", "0,0=9,48", "--point", "299,0=10,48", "--point", "0,199=9,47"};
    ExpectFailure(2, Scale(Words{"--datum", "WGS84", "--unit", "yards"} + three), "on a --grid");
    ExpectFailure(2,
                  Scale({"--grid", "Swiss Grid", "--unit", "yards", "--worldfile",
                         Write("w.tfw", "2\n0\n0\n-2\n1\n2\n")}),
                  "a worldfile is in metres");
    ExpectFailure(2, Scale(Words{"--grid", "Swiss Grid", "--unit", "fathoms"} + three),
                  "'meters', 'yards', 'U.S. feet', 'Int. feet'");
    DoDoubted(Scale(Words{"--datum", "WGS84"} + three));
    for (const char* command : {"locate", "find"}) {
        ExpectFailure(2, {command, library_, "1", "9", "48", "--unit", "yards"}, "these are degrees");
        ExpectFailure(2, {command, library_, "1", "9", "48", "--wgs84", "--unit", "yards"},
                      "these are degrees");
    }
}

TEST_F(WrittenPlaces, AreFoundAndConvertedOnTheCommandLineAndInTheInput) {
    DoDoubted(Scale(
        {"--datum", "WGS84", "--point", "0,0=9,48", "--point", "299,0=10,48", "--point", "0,199=9,47"}));
    ExpectPair(Do({"find", library_, "1", "48°0'0\"N", "10°E"}), 299, 0);
    ExpectPair(Do({"find", library_, "1", "E10", "N48", "--wgs84"}), 299, 0);
    ExpectPair(Do({"find", library_, "1"}, "48 0 0 N 10 0 0 E\n"), 299, 0);
    ExpectFailure(2, {"find", library_, "1", "48°0'N", "10°N"}, "is not a longitude and a latitude");
    ExpectFailure(2, {"find", library_, "1", "48°", "10°"}, "number");
    ExpectFailure(1, {"find", library_, "1"}, "Line 2", "9 48\n48°N 10°N\n");
    const Words utm{"project", "--grid", "UTM (etrs89)", "--zone", "32"};
    const std::string plain = Do(utm, "9.5 48.25\n");
    EXPECT_EQ(Do(utm, "48°15'N 9°30'E\n"), plain);
    EXPECT_EQ(Do({"shift", "--datum", "ED50"}, "48°15'N 9°30'E\n"),
              Do({"shift", "--datum", "ED50"}, "9.5 48.25\n"));
    std::istringstream meters(plain);
    double easting = 0, northing = 0;
    meters >> easting >> northing;
    const std::string feet = Do(utm + Words{"--unit", "U.S. feet"}, "9.5 48.25\n");
    ExpectPair(feet, easting / SurveyFoot, northing / SurveyFoot, 1e-6);
    ExpectPair(Do(utm + Words{"--inverse", "--unit", "U.S. feet"}, feet), 9.5, 48.25);
    ExpectPair(Do(utm + Words{"--inverse"},
                  "N " + std::to_string(northing) + " E " + std::to_string(easting) + "\n"),
               9.5, 48.25, 1e-8);
}
