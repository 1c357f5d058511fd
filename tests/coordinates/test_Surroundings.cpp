#include "base/NumberText.h"
#include "coordinates/CrsText.h"
#include "coordinates/ProjTransform.h"
#include "coordinates/Projection.h"
#include "coordinates/QuorvantPosition.h"
#include "tests/support/RunProgram.h"
#include "tests/support/ScopedVariable.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <clocale>
#include <locale>
#include <sstream>
#include <stdexcept>

// The same numbers must come out whatever locale, environment or PROJ installation the user has.

// The C library keeps the folders that LOCPATH names for ever; the leak checker looks for this function.
extern "C" const char* __lsan_default_suppressions(); // NOLINT(bugprone-reserved-identifier)
extern "C" const char* __lsan_default_suppressions() {
    return "leak:__argz_add_sep";
} // NOLINT

namespace {

struct CommaFacet : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
};

/// A German locale in C, compiled for the occasion so that none need be installed, and a decimal comma in
/// C++.
class ScopedDecimalComma {
public:
    ScopedDecimalComma() : path_("LOCPATH", folder_.Path().string()) {
        const auto made =
            RunProgram({"localedef", "-i", "de_DE", "-f", "UTF-8", (folder_ / "de_DE.UTF-8").string()});
        if (made.status != 0 || std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr)
            throw std::runtime_error("no German locale: " + made.err);
        // A locale with a facet of its own has no name and leaves the one of C alone.
        std::locale::global(std::locale(old_, new CommaFacet));
    }
    ~ScopedDecimalComma() {
        std::locale::global(old_);
        std::setlocale(LC_ALL, oldName_.c_str());
    }
    ScopedDecimalComma(const ScopedDecimalComma&) = delete;
    ScopedDecimalComma& operator=(const ScopedDecimalComma&) = delete;

private:
    TempFolder folder_;
    ScopedVariable path_;
    std::locale old_;
    std::string oldName_ = std::setlocale(LC_ALL, nullptr);
};

/// Numbers from every method, far from the axis too, and everything that is written as text.
std::string Everything() {
    std::string text;
    const struct {
        std::int16_t identifier;
        std::int32_t zone;
        LonLat position;
    } rows[]{{3, 0, {-2.5, 52.25}}, {1, 32, {45.5, 10.25}}, {30, 4204, {-96.5, 28.5}},
             {34, 0, {5.5, 52.5}},  {7, 0, {8.25, 46.75}},  {21, 0, {173.5, -41.5}},
             {48, 0, {9.5, 56.5}},  {49, 0, {15, 55.1}},    {22, 0, {4.25, 50.5}}};
    for (const auto& row : rows) {
        const QuorvantGrid grid = MakeGrid(row.identifier, row.zone);
        const GridProjection projection(grid.AsNumbers(), grid.Datum());
        const EastNorth plane = projection.Forward(row.position);
        const LonLat back = projection.Inverse(plane);
        const LonLat wgs84 = DatumShift(grid.Datum()).ToWgs84(back);
        for (const double number : {plane.easting, plane.northing, wgs84.longitude, wgs84.latitude})
            text += NumberToText(number) + "\n";
        text += QuorvantPosition(wgs84.longitude, wgs84.latitude)
                    .LongitudeText(AngleFormat::DegreesMinutesSeconds);
    }
    return text;
}

} // namespace

TEST(Surroundings, ADecimalCommaChangesNothing) {
    const std::string expected = Everything();
    const std::string wkt = DescribeCrs(MakeDatum(3), MakeGrid(3, 0).AsNumbers()).wkt;
    const ScopedDecimalComma german;
    ASSERT_STREQ(std::localeconv()->decimal_point, ",");
    ASSERT_EQ((std::ostringstream() << 12.5).str(), "12,5");
    EXPECT_EQ(Everything(), expected);
    EXPECT_EQ(DescribeCrs(MakeDatum(3), MakeGrid(3, 0).AsNumbers()).wkt, wkt);
    EXPECT_EQ(TextToNumber("12.5"), 12.5);
    EXPECT_FALSE(TextToNumber("12,5"));
}

TEST(Surroundings, TheNetworkStaysOffWhenTheEnvironmentTurnsItOn) {
    const std::string expected = Everything();
    const ScopedVariable network("PROJ_NETWORK", "ON");
    EXPECT_FALSE(proj_context_is_network_enabled(MakeProjContext().get()));
    EXPECT_EQ(Everything(), expected);
}

TEST(Surroundings, NoDatabaseIsNeededNorMissedAloud) {
    const std::string expected = Everything();
    const TempFolder empty;
    const ScopedVariable data("PROJ_DATA", empty.Path().string());
    const ScopedVariable library("PROJ_LIB", empty.Path().string());
    testing::internal::CaptureStderr();
    EXPECT_EQ(Everything(), expected);
    EXPECT_NE(DescribeCrs(MakeDatum(3), MakeGrid(3, 0).AsNumbers()).wkt, "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(Surroundings, AnApproximateTransverseMercatorInTheSettingsIsNotUsed) {
    const std::string expected = Everything();
    const TempFolder folder;
    WriteWholeFile(folder / "proj.ini", "[general]\ntmerc_default_algo = evenden_snyder\nnetwork = on\n");
    const ScopedVariable data("PROJ_DATA", folder.Path().string());
    const ScopedVariable library("PROJ_LIB", folder.Path().string());
    EXPECT_FALSE(proj_context_is_network_enabled(MakeProjContext().get()));
    EXPECT_EQ(Everything(), expected);
}
