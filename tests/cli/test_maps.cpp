#include "tests/cli/AtlavexTest.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <limits>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

namespace {

using Maps = AtlavexTest;

constexpr const char* DatePattern = "[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}";

std::vector<std::string> KeysOf(const nlohmann::ordered_json& object) {
    std::vector<std::string> keys;
    for (const auto& [key, value] : object.items())
        keys.push_back(key);
    return keys;
}

constexpr const char* LongAgo = "1999-12-31 23:59:59";

} // namespace

TEST_F(Maps, ANewMapCarriesTheEditorsTextsInItsOrder) {
    const std::string library = NewLibrary();
    Do({"add-map", library, Bmp("north.part.bmp"), "--description", "a \"description\""});
    const auto map = DoJson({"info", library})["maps"][0];
    EXPECT_THAT(KeysOf(map["metadata"]),
                ElementsAre("name", "description", "version", "created", "lastchanged"));
    EXPECT_EQ(map["metadata"]["name"], "north");
    EXPECT_EQ(map["metadata"]["description"], "a \"description\"");
    EXPECT_EQ(map["metadata"]["version"], "Quorvant Studio v2.31.0");
    EXPECT_THAT(map["metadata"]["created"].get<std::string>(), MatchesRegex(DatePattern));
    EXPECT_EQ(map["metadata"]["created"], map["metadata"]["lastchanged"]);
    EXPECT_THAT(map["identifier"].get<std::string>(),
                MatchesRegex("[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}"));
    EXPECT_EQ(map["width"], 300);
    EXPECT_EQ(map["height"], 200);
    EXPECT_EQ(map["tileWidth"], 256);
    EXPECT_EQ(map["levels"], 2);
    EXPECT_EQ(map["scaled"], false);
    EXPECT_TRUE(map["datum"].is_null());
    EXPECT_TRUE(map["grid"].is_null());
}

TEST_F(Maps, NamesAndTilesCanBeChosen) {
    const std::string library = NewLibrary();
    Do({"add-map", library, Bmp("x.bmp"), "--name", "Sheet 12", "--tile", "64x1024"});
    Do({"add-map", library, In("x.bmp"), "--name=", "--tile=128x64"});
    const auto maps = DoJson({"info", library})["maps"];
    EXPECT_EQ(maps[0]["name"], "Sheet 12");
    EXPECT_EQ(maps[0]["tileWidth"], 64);
    EXPECT_EQ(maps[0]["tileHeight"], 1024);
    EXPECT_EQ(maps[1]["name"], "");
    EXPECT_EQ(maps[1]["tileWidth"], 128);
    ExpectFailure(1, {"add-map", library, In("x.bmp"), "--tile", "63x64"}, "64");
    ExpectFailure(1, {"add-map", library, In("x.bmp"), "--tile", "64x1025"}, "1024");
}

TEST_F(Maps, WhatIsNoImageIsRefused) {
    const std::string library = ScaledLibrary(), whole = ReadWholeFile(In("Sheet.bmp"));
    std::filesystem::create_directory(In("folder"));
    Write("empty.png", "");
    Write("text.png", "not an image");
    Write("short.bmp", whole.substr(0, whole.size() / 2));
    Write("huge.bmp",
          whole.substr(0, 18) + std::string("\xff\xff\xff\x7f\xff\xff\xff\x7f", 8) + whole.substr(26));
    for (const char* command : {"add-map", "add-icon"}) {
        for (const char* name : {"empty.png", "text.png", "short.bmp", "huge.bmp", "a.Atlavex"})
            ExpectFailure(5, {command, library, In(name)}, name);
        for (const std::string& name :
             {In("missing.png"), In("folder"), std::string("/dev/null"), std::string()})
            ExpectFailure(1, {command, library, name});
    }
}

TEST_F(Maps, WhatOfAnImageIsShownOtherwiseThanStoredIsSaid) {
    const std::string library = NewLibrary();
    Python("from PIL import Image\nImage.linear_gradient('L').convert('F').save('heights.tif')");
    for (const char* command : {"add-map", "add-icon"}) {
        const ProgramResult result = Run({command, library, In("heights.tif")});
        EXPECT_EQ(result.status, 0) << command;
        EXPECT_EQ(result.err, "atlavex: The floating-point samples of the image '" + In("heights.tif") +
                                  "' from 0 to 255 were stretched to 0 to 255.\n");
    }
}

TEST_F(Maps, ScalingMistakesAreFoundBeforeTheImageIsRead) {
    const std::string library = NewLibrary(), image = In("missing.png");
    const Words add{"add-map", library, image};
    const Words points{"--point", "0,0=9,48", "--point", "0,9=9,47", "--point", "9,9=10,47"};
    ExpectFailure(2, add + points + Words{"--grid", "Nowhere Grid"}, "Nowhere Grid");
    ExpectFailure(2, add + points + Words{"--datum", "Nowhere"}, "Nowhere");
    ExpectFailure(2, add + points + Words{"--datum", "wgs84"}, "wgs84");
    for (const char* zone : {"0", "61", "-1", "x", "1.5", "99999999999"})
        ExpectFailure(2, add + points + Words{"--grid", "UTM (etrs89)", "--zone", zone}, zone);
    ExpectFailure(2, add + points + Words{"--grid", "UTM (etrs89)"}, "zone");
    ExpectFailure(2, add + points + Words{"--grid", "State Plane (nad83)", "--zone", "0407"}, "0407");
    ExpectFailure(2, add + points + Words{"--grid", "Bundesmeldenetz", "--zone", "M30"}, "M30");
    ExpectFailure(2, add + points + Words{"--grid", "British National Grid", "--zone", "1"}, "zone");
    ExpectFailure(1, add + Words{"--datum", "WGS84", "--worldfile", In("missing.tfw")}, "missing.tfw");
}

TEST_F(Maps, AWorldfileHasSixNumbers) {
    const std::string library = ScaledLibrary();
    int number = 0;
    for (const char* text :
         {"", "1\n0\n0\n-1\n5\n", "1\n0\n0\n-1\n5\n6\n7\n", "nan\n0\n0\n-1\n5\n6\n", "1,5\n0\n0\n-1\n5\n6\n",
          "1 0 0 -1 5 6\n", "one\n0\n0\n-1\n5\n6\n", "1\n0\n0\ninf\n5\n6\n", "0\n0\n0\n0\n5\n6\n"}) {
        const std::string file = Write("w" + std::to_string(++number) + ".tfw", text);
        ExpectFailure(1, {"scale", library, "1", "--datum", "WGS84", "--worldfile", file});
    }
    for (const std::string& file : {In("missing.tfw"), std::string("/"), std::string("/dev/null")})
        ExpectFailure(1, {"scale", library, "1", "--datum", "WGS84", "--worldfile", file});
    Do({"scale", library, "1", "--datum", "WGS84", "--worldfile",
        Write("good", "0.01\r\n0\r\n\r\n0\r\n-0.01\r\n9\r\n48")});
}

TEST_F(Maps, PointsAndCornersMustSpanSomething) {
    const std::string library = ScaledLibrary();
    const Words scale{"scale", library, "1", "--datum", "WGS84"};
    ExpectFailure(1, scale + Words{"--point", "0,0=9,48", "--point", "5,5=9.5,47.5", "--point", "9,9=10,47"},
                  "line");
    ExpectFailure(1, scale + Words{"--point", "0,0=9,48", "--point", "0,0=9,47", "--point", "9,9=10,47"});
    ExpectFailure(1, scale + Words{"--corner", "0,0=9,48", "--corner", "100,100=9,47", "--corner",
                                   "100,0=10,48", "--corner", "0,100=10,47"});
    ExpectFailure(1, scale + Words{"--corner", "5,5=9,48", "--corner", "5,5=9,47", "--corner", "5,5=10,48",
                                   "--corner", "5,5=10,47"});
    EXPECT_EQ(DoJson({"info", library})["maps"][0]["zone"], "32");
}

TEST_F(Maps, AScalingThatIsRefusedLeavesTheFormer) {
    const std::string library = NewLibrary();
    Do({"add-map", library, Bmp("x.bmp"), "--datum", "ED50", "--point", "0,0=9,56", "--point", "100,0=10,56",
        "--point", "0,100=9,55"});
    const Words scale{"scale", library, "1", "--grid", "UTM North (wgs84)", "--zone", "32"};
    const auto before = DoJson({"info", library});
    ExpectFailure(1, scale + Words{"--point", "0,0=500000,6200000", "--point", "10,10=500010,6200010",
                                   "--point", "20,20=500020,6200020"});
    ExpectFailure(1, scale + Words{"--worldfile", Write("zeros.tfw", "0\n0\n0\n0\n0\n0\n")});
    ExpectFailure(1, scale + Words{"--corner", "0,0=500000,6200000", "--corner", "0,0=500000,6100000",
                                   "--corner", "0,0=600000,6200000", "--corner", "0,0=600000,6100000"});
    EXPECT_EQ(DoJson({"info", library}), before);
}

TEST_F(Maps, AGeoreferenceBeyondThePolesIsRefused) {
    const std::string library = ScaledLibrary();
    const Words scale{"scale", library, "1", "--datum", "WGS84"};
    const Words add{"add-map", library, In("Sheet.bmp"), "--datum", "WGS84"};
    for (const Words& command : {scale, add}) {
        // In a point, where it is said before anything is read.
        ExpectFailure(1,
                      command + Words{"--point", "0,0=9,80", "--point", "9,0=10,80", "--point", "0,9=9,90.5"},
                      "Point 3");
        ExpectFailure(1,
                      command + Words{"--point", "0,0=9,80", "--point", "9,0=361,80", "--point", "0,9=9,79"},
                      "longitude");
        ExpectFailure(1,
                      command + Words{"--corner", "0,0=9,-80", "--corner", "0,199=9,-91", "--corner",
                                      "299,0=10,-80", "--corner", "299,199=10,-91"},
                      "latitude");
        // In the map: 200 rows of a degree each.
        ExpectFailure(1,
                      command + Words{"--point", "0,0=9,80", "--point", "9,0=9.1,80", "--point", "0,9=9,71"},
                      "latitude");
        ExpectFailure(1, command + Words{"--worldfile", Write("metres.tfw", "2\n0\n0\n-2\n1000\n5000\n")},
                      "latitude");
    }
    // From pole to pole is a map, and a grid knows no degrees.
    Do(scale + Words{"--point", "0,0=-180,90", "--point", "299,0=180,90", "--point", "0,199=-180,-90"});
    DoDoubted(
        {"scale", library, "1", "--grid", "UTM (etrs89)", "--zone", "32", "--worldfile", In("metres.tfw")});
}

TEST_F(Maps, AMapTellsTheNamesOfItsSystem) {
    const std::string library = ScaledLibrary();
    const Words points{"--point", "0,0=500000,1000000", "--point", "99,0=500099,1000000",
                       "--point", "0,99=500000,999901"};
    const auto info = [&] { return DoJson({"info", library})["maps"][0]; };
    // Four datums have the numbers of NAD83; the grid tells which is meant.
    DoDoubted(Words{"scale", library, "1", "--grid", "UTM (nad83)", "--zone", "15"} + points);
    EXPECT_EQ(info()["datum"]["name"], "NAD83");
    EXPECT_EQ(info()["datum"]["identifier"], 19);
    EXPECT_THAT(Do({"info", library}), HasSubstr("datum: NAD83\n"));
    DoDoubted(Words{"scale", library, "1", "--grid", "State Plane (nad83)", "--zone", "4204"} + points);
    EXPECT_EQ(info()["datum"]["name"], "NAD83");
    EXPECT_EQ(info()["zone"], "4204");
    DoDoubted(Words{"scale", library, "1", "--grid", "NZ Transverse Mercator (2000)"} + points);
    EXPECT_EQ(info()["datum"]["name"], "NZGD2000");
    EXPECT_EQ(info()["zone"], "");
    EXPECT_THAT(Do({"info", library}), Not(HasSubstr("zone")));
    // Without a grid nothing tells.
    Do({"scale", library, "1", "--datum", "NAD83", "--point", "0,0=9,48", "--point", "99,0=10,48", "--point",
        "0,99=9,47"});
    EXPECT_EQ(info()["datum"]["name"], "ETRS89, GDA94, NZGD2000 or NAD83");
    EXPECT_EQ(info()["datum"]["names"].size(), 4U);
    EXPECT_EQ(info()["datum"]["identifier"], 0);
    EXPECT_THAT(Do({"info", library}), HasSubstr("datum: ETRS89, GDA94, NZGD2000 or NAD83\n"));
}

TEST_F(Maps, AScalingIsKeptAsItWasGiven) {
    const std::string library = ScaledLibrary();
    auto map = DoJson({"info", library})["maps"][0];
    EXPECT_EQ(map["scaling"], "linear");
    EXPECT_EQ(map["grid"]["name"], "UTM (etrs89)");
    EXPECT_EQ(map["grid"]["identifier"], 13);
    EXPECT_EQ(map["grid"]["longitude"], 9.0);
    EXPECT_EQ(map["datum"]["name"], "ETRS89");
    EXPECT_EQ(map["zone"], "32");
    EXPECT_EQ(map["referencePoints"][2],
              nlohmann::json::parse(R"({"pixelX":100,"pixelY":100,"x":500200,"y":6099800})"));

    Do({"scale", library, "Sheet", "--datum", "ED50", "--corner", "10.5,10=9,48", "--corner", "5,190=9,47.5",
        "--corner", "290,10=10,48", "--corner", "295,190=10,47.5"});
    map = DoJson({"info", library})["maps"][0];
    EXPECT_EQ(map["scaling"], "polar");
    EXPECT_EQ(map["datum"]["name"], "ED50");
    EXPECT_TRUE(map["grid"].is_null());
    EXPECT_EQ(map["referencePoints"].size(), 4U);
    EXPECT_EQ(map["referencePoints"][0]["pixelX"], 10); // ties go to the even pixel

    Do({"scale", library, "1", "--grid", "Bundesmeldenetz", "--zone", "M31", "--worldfile",
        Write("w.tfw", "2\n0\n0\n-2\n1000\n5000\n")});
    map = DoJson({"info", library})["maps"][0];
    EXPECT_EQ(map["grid"]["identifier"], 18);
    EXPECT_EQ(map["zone"], "2");
    EXPECT_EQ(map["referencePoints"][0]["x"], 1002);
    EXPECT_EQ(map["referencePoints"][2]["y"], 4800);
}

TEST_F(Maps, AWorldfileIsTurnedWithItsImageWhenTheMapIsAdded) {
    const std::string library = NewLibrary();
    // Stored 300x200 pixels that are to be shown turned by 90 degrees clockwise: stored (0, 0) is shown at
    // the upper right corner, pixel (199, 0).
    Python("from PIL import Image\nImage.new('RGB', (300, 200)).save('turned.tif', tiffinfo={274: 6})");
    const std::string worldfile = Write("w.tfw", "2\n0\n0\n-2\n1000\n5000\n");
    const Words scaling{"--grid", "UTM (etrs89)", "--zone", "32", "--worldfile", worldfile};
    DoDoubted(Words{"add-map", library, In("turned.tif")} + scaling);
    EXPECT_EQ(DoJson({"info", library})["maps"][0]["width"], 200);
    EXPECT_EQ(Do({"locate", library, "1", "199", "0"}), "1000 5000\n");
    EXPECT_EQ(Do({"locate", library, "1", "199", "299"}), "1598 5000\n");
    DoDoubted(Words{"scale", library, "1"} + scaling);
    EXPECT_EQ(Do({"locate", library, "1", "0", "0"}), "1000 5000\n");
}

TEST_F(Maps, ChangesStampWhatTheyTouchAndNothingElse) {
    const std::string library = ScaledLibrary();
    Do({"add-map", library, Bmp("x.bmp")});
    const auto stamp = [&](const char* kind, const char* which) {
        const auto info = DoJson({"info", library});
        const auto& list = info[std::string(kind) + "s"];
        return list[static_cast<std::size_t>(std::stoi(which) - 1)]["metadata"]["lastchanged"]
            .get<std::string>();
    };
    const auto age = [&] {
        for (const Words& object : {Words{"map", "1"}, Words{"map", "2"}, Words{"icon", "1"}})
            Do(Words{"set", library} + object + Words{std::string("lastchanged=") + LongAgo});
    };
    for (const Words& command :
         {Words{"set", library, "map", "2", "a=b"}, Words{"unset", library, "map", "2", "a"},
          Words{"scale", library, "2"} + SheetScaling}) {
        age();
        Do(command);
        EXPECT_NE(stamp("map", "2"), LongAgo);
        EXPECT_EQ(stamp("map", "1"), LongAgo);
        EXPECT_EQ(stamp("icon", "1"), LongAgo);
    }
    age();
    Do({"offset", library, "1", "7,8"});
    EXPECT_NE(stamp("icon", "1"), LongAgo);
    EXPECT_EQ(stamp("map", "1"), LongAgo);
}

TEST_F(Maps, TextsOfAnyKindComeBackAsTheyWere) {
    const std::string library = ScaledLibrary();
    const std::vector<std::string> texts{"quotes \" and ' and `",
                                         "slashes / and \\",
                                         "line\nend\r\nand\ttab",
                                         "\xE2\x80\xAE"
                                         "right to left",
                                         "emoji 🗺️ and 漢字",
                                         "[a,b]",
                                         "{}",
                                         "%%",
                                         "--json",
                                         "a=b=c",
                                         " blanks ",
                                         "$(reboot) `reboot` ;reboot",
                                         "</script><b>",
                                         "\x01[x]"};
    Words set{"set", library, "map", "1", "--"};
    for (const std::string& text : texts)
        set.push_back(text.substr(0, text.find('=')) + "=" + text);
    Do(set);
    const auto metadata = DoJson({"info", library})["maps"][0]["metadata"];
    for (const std::string& text : texts)
        EXPECT_EQ(metadata[text.substr(0, text.find('='))], text);
    for (const std::string& text : texts) {
        Do({"set", library, "map", "1", "name=" + text});
        EXPECT_EQ(DoJson({"info", library})["maps"][0]["name"], text);
        EXPECT_EQ(Do({"locate", library, "--", text, "0", "0"}), "500000 6100000\n");
    }
    Words unset{"unset", library, "map", "1", "--"};
    for (const std::string& text : texts)
        unset.push_back(text.substr(0, text.find('=')));
    Do(unset + Words{"no such key"});
    EXPECT_THAT(KeysOf(DoJson({"info", library})["maps"][0]["metadata"]),
                ElementsAre("name", "description", "version", "created", "lastchanged"));
}

TEST_F(Maps, NamesCannotForgeLinesOnTheTerminal) {
    const std::string library = ScaledLibrary();
    Do({"set", library, "map", "1", "name=x\nSealed: no\x1b[31m\xC2\x9B\xE2\x80\xAEy"});
    const std::string text = Do({"info", library});
    EXPECT_THAT(text, HasSubstr("x\\nSealed: no\\x1b[31m\\x9b\\u202ey\n"));
    ExpectFailure(1, {"locate", library, "a\nb", "0", "0"}, "a\\nb");
}

TEST_F(Maps, AMapIsChosenByPositionNameOrIdentifier) {
    const std::string library = ScaledLibrary();
    Do({"add-map", library, Bmp("x.bmp"), "--name", "2"});
    Do({"add-map", library, In("x.bmp"), "--name", "Sheet"});
    const std::string identifier = DoJson({"info", library})["maps"][0]["identifier"];
    const auto described = [&](const std::string& which) {
        Do({"set", library, "map", which, "mark=" + which});
        const auto maps = DoJson({"info", library})["maps"];
        int position = 0;
        for (const auto& map : maps)
            position = map["metadata"].value("mark", "") == which ? map["position"].get<int>() : position;
        Do({"unset", library, "map", std::to_string(position), "mark"});
        return position;
    };
    EXPECT_EQ(described("1"), 1);
    EXPECT_EQ(described("003"), 3);
    EXPECT_EQ(described(identifier), 1);
    EXPECT_EQ(described("id:" + identifier), 1);
    EXPECT_EQ(described("name:2"), 2);
    ExpectFailure(1, {"remove", library, "map", "Sheet"}, "1, 3");
    ExpectFailure(1, {"remove", library, "map", "name:Sheet"}, "1, 3");
    for (const char* which :
         {"0", "4", "99999999999999999999", "-1", "sheet", "Sheet ", "", "name:", "id:Sheet", "1.0"})
        ExpectFailure(1, {"remove", library, "map", which}, "There is no map");
    // An identifier that is another map's name stands for both.
    Do({"set", library, "map", "2", "name=" + identifier});
    ExpectFailure(1, {"remove", library, "map", identifier}, "1, 2");
    EXPECT_EQ(described("name:" + identifier), 2);
}

TEST_F(Maps, MapsCanBeCalledLikeCommands) {
    const std::string library = ScaledLibrary();
    Do({"set", library, "map", "1", "name=info"});
    EXPECT_EQ(Do({"locate", library, "info", "0", "0"}), "500000 6100000\n");
}

TEST_F(Maps, RemovedObjectsAreGone) {
    const std::string library = ScaledLibrary();
    Do({"add-map", library, Bmp("x.bmp")});
    Do({"remove", library, "map", "1"});
    EXPECT_EQ(DoJson({"info", library})["maps"][0]["name"], "x");
    Do({"remove", library, "icon", "Hut"});
    EXPECT_EQ(DoJson({"info", library})["icons"].size(), 0U);
    ExpectFailure(1, {"remove", library, "icon", "Hut"}, "There is no icon");
    ExpectFailure(1, {"remove", library, "icon", "1"}, "has 0 icons");
}

TEST_F(Maps, AnIconHasItsOwnVersionAndAnOffset) {
    const std::string library = ScaledLibrary();
    auto icon = DoJson({"info", library})["icons"][0];
    EXPECT_THAT(KeysOf(icon["metadata"]),
                ElementsAre("name", "description", "version", "created", "lastchanged"));
    EXPECT_EQ(icon["metadata"]["version"], "1.0");
    EXPECT_EQ(icon["name"], "Hut");
    EXPECT_EQ(icon["width"], 16);
    EXPECT_EQ(icon["offset"]["x"], -3);
    EXPECT_EQ(icon["offset"]["y"], 4);
    Do({"offset", library, "Hut", "-2147483648,2147483647"});
    icon = DoJson({"info", library})["icons"][0];
    EXPECT_EQ(icon["offset"]["x"], std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(icon["offset"]["y"], std::numeric_limits<std::int32_t>::max());
    ExpectFailure(1, {"offset", library, "2", "1,1"}, "has 1 icon.");
    ExpectFailure(1, {"offset", library, "id:Hut", "1,1"}, "There is no icon");
}
