// Several images added by one command, and the worldfiles that lie beside them.

#include "tests/cli/AtlavexTest.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <filesystem>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

class ManyImages : public AtlavexTest {
protected:
    ManyImages() { Do({"new", library_}); }

    /// Two metres a pixel, its upper left pixel at the easting.
    std::string Worldfile(const std::string& name, int easting) const {
        return Write(name, "2\n0\n0\n-2\n" + std::to_string(easting) + "\n6100000\n");
    }
    Words NamesIn(const std::string& library, const Words& key = {}) const {
        Words names;
        const auto info = DoJson(Words{"info", library} + key);
        for (const auto& map : info["maps"])
            names.push_back(map["name"]);
        return names;
    }
    double Easting(const std::string& map) const {
        return std::stod(Do({"locate", library_, map, "0", "0"}));
    }

    const Words utm_{"--grid", "UTM (etrs89)", "--zone", "32", "--worldfile", "auto"};
    std::string library_ = In("a.Atlavex");
};

} // namespace

TEST_F(ManyImages, AreAddedInTheirOrderEachWithItsWorldfile) {
    Words images;
    for (int number = 1; number <= 3; ++number) {
        const std::string name = "sheet" + std::to_string(number);
        images.push_back(Bmp(name + ".bmp"));
        Worldfile(name + ".bpw", 500000 + number * 1000);
    }
    Do(Words{"add-map", library_} + images + utm_ + Words{"--description", "scanned"});
    EXPECT_THAT(NamesIn(library_), ElementsAre("sheet1", "sheet2", "sheet3"));
    for (int number = 1; number <= 3; ++number)
        EXPECT_EQ(Easting("sheet" + std::to_string(number)), 500000 + number * 1000);
    EXPECT_EQ(DoJson({"info", library_})["maps"][2]["metadata"]["description"], "scanned");
    Do({"verify", library_});
}

TEST_F(ManyImages, OfWhichSomeFailAreAddedButForThose) {
    Write("text.png", "not an image");
    const auto result =
        Run({"add-map", library_, Bmp("first.bmp"), In("text.png"), In("missing.tif"), Bmp("last.bmp")});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("'" + In("text.png") + "' was not added: "));
    EXPECT_THAT(result.err, HasSubstr("'" + In("missing.tif") + "' was not added: "));
    EXPECT_THAT(result.err, HasSubstr("2 of 4 images were added."));
    EXPECT_THAT(NamesIn(library_), ElementsAre("first", "last"));
    Do({"verify", library_});
}

TEST_F(ManyImages, WithoutAWorldfileAreNotAddedWhereTheyWereToBeScaled) {
    Bmp("with.bmp");
    Worldfile("with.BPW", 500000);
    const auto result = Run(Words{"add-map", library_, Bmp("without.bmp"), In("with.bmp")} + utm_);
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("looked for without.bpw, without.bmpw, without.bmp.wld, without.wld."));
    EXPECT_THAT(NamesIn(library_), ElementsAre("with"));
    EXPECT_EQ(Easting("with"), 500000);
}

TEST_F(ManyImages, AreAddedToASealedLibrary) {
    const std::string sealed = SealedLibrary("sealed.Atlavex", "secret");
    const Words key{"--key-file", Write("key", "secret")};
    Do(Words{"add-map", sealed, Bmp("one.bmp"), Bmp("two.bmp")} + key);
    EXPECT_THAT(NamesIn(sealed, key), ElementsAre("one", "two"));
    ExpectFailure(
        3, Words{"add-map", sealed, In("one.bmp"), In("two.bmp"), "--key-file", Write("wrong", "Secret")});
}

TEST_F(ManyImages, TakeNoOptionsThatAreMeantForOne) {
    const Words add{"add-map", library_, Bmp("one.bmp"), Bmp("two.bmp")};
    for (const Words& option : {Words{"--name", "Sheet"},
                                {"--grid", "Swiss Grid", "--point", "0,0=1,1"},
                                {"--grid", "Swiss Grid", "--corner", "0,0=1,1"},
                                {"--check", "0,0=1,1"},
                                {"--max-residual", "1"},
                                {"--json"}})
        ExpectFailure(2, add + option, "for one image alone");
    ExpectFailure(2, add + Words{"--datum", "WGS84", "--worldfile", Worldfile("w.bpw", 0)},
                  "--worldfile auto");
    ExpectFailure(2, add + Words{"--datum", "WGS84"}, "--worldfile auto");
    ExpectFailure(2, add + Words{"--datum", "no such datum", "--worldfile", "auto"}, "no such datum");
}

TEST_F(ManyImages, AreAtLeastOne) {
    ExpectFailure(2, {"add-map", library_});
    EXPECT_THAT(NamesIn(library_), ElementsAre());
}

/// What scanners, desktop and web programs call them: the first and last letter of the image's extension and
/// a "w", the whole extension and a "w", or "wld".
TEST_F(ManyImages, FindTheirWorldfilesUnderEveryUsualName) {
    const std::string image = Bmp("plan.bmp");
    int number = 0;
    for (const auto& [extension, names] :
         std::vector<std::pair<std::string, Words>>{{"tif", {"wld", "tif.wld", "tifw", "TFW"}},
                                                    {"TIFF", {"WLD", "tiff.wld", "tiffw", "tfw"}},
                                                    {"jpeg", {"wld", "jpeg.wld", "jpegw", "jgw"}},
                                                    {"jpg", {"wld", "jpg.wld", "jpgw", "JGW"}},
                                                    {"png", {"wld", "png.wld", "pngw", "pgw"}},
                                                    {"gif", {"wld", "gif.wld", "gifw", "gfw"}},
                                                    {"bmp", {"wld", "bmp.wld", "bmpw", "bpw"}}}) {
        // The reader goes by what a file holds.
        const std::string stem = "of " + extension, file = In(stem + "." + extension);
        std::filesystem::copy_file(image, file);
        Worldfile(stem + "2.tfw", 1);           // another image's
        for (const std::string& name : names) { // each goes before those that lie there already
            Worldfile(stem + "." + name, 500000 + ++number);
            Do(Words{"add-map", library_, file, "--name", name + " of " + extension} + utm_);
            EXPECT_EQ(Easting(name + " of " + extension), 500000 + number) << name;
        }
    }
}

TEST_F(ManyImages, HaveNoWorldfileBesideThemOnceTheyAreMaps) {
    Do({"add-map", library_, Bmp("one.bmp")});
    ExpectFailure(2, Words{"scale", library_, "1"} + utm_, "--worldfile auto");
}
