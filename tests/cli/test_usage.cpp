#include "tests/cli/AtlavexTest.h"

#include <gmock/gmock.h>

#include <map>
#include <regex>

using testing::HasSubstr;

namespace {

const Words KeyOptions{"--key-file", "--key-env"};
const Words ChangeOptions = KeyOptions + Words{"--wait"};
const Words ScalingOptions{"--grid", "--zone", "--datum", "--worldfile", "--point", "--corner"};

/// Every command with all its options.
const std::map<std::string, Words> Commands{
    {"new", KeyOptions},
    {"info", KeyOptions + Words{"--json"}},
    {"add-map", ChangeOptions + ScalingOptions + Words{"--name", "--description", "--tile"}},
    {"add-icon", ChangeOptions + Words{"--name", "--description", "--offset"}},
    {"scale", ChangeOptions + ScalingOptions},
    {"set-grid", ChangeOptions + Words{"--grid", "--zone", "--datum"}},
    {"locate", KeyOptions + Words{"--wgs84", "--json"}},
    {"find", KeyOptions + Words{"--wgs84", "--json"}},
    {"render", KeyOptions + Words{"--zoom", "--at", "--size", "--out"}},
    {"extract", KeyOptions + Words{"--out"}},
    {"extract-icon", KeyOptions + Words{"--out"}},
    {"export-tiles", KeyOptions + Words{"--to"}},
    {"set", ChangeOptions},
    {"unset", ChangeOptions},
    {"remove", ChangeOptions},
    {"offset", ChangeOptions},
    {"merge", ChangeOptions + Words{"--other-key-file", "--other-key-env"}},
    {"rekey", ChangeOptions + Words{"--new-key-file", "--new-key-env", "--no-key"}},
    {"recover", KeyOptions + Words{"--to", "--base", "--discard", "--json"}},
    {"review", KeyOptions + Words{"--strict", "--json"}},
    {"salvage", KeyOptions + Words{"--to", "--json"}},
    {"verify", KeyOptions + Words{"--json"}},
    {"compact", ChangeOptions},
    {"catalogue", {"--json"}},
    {"project", {"--grid", "--zone", "--inverse", "--json"}},
    {"shift", {"--datum", "--inverse", "--json"}},
};

using Usage = AtlavexTest;

} // namespace

TEST_F(Usage, TheVersionIsPrinted) {
    EXPECT_EQ(Do({"--version"}), "atlavex 2.31.0\n");
}

TEST_F(Usage, HelpListsEveryCommandAndExitStatus) {
    const std::string help = Do({"--help"});
    for (const auto& [command, options] : Commands)
        EXPECT_THAT(help, HasSubstr("\n  " + command + " ")) << command;
    const std::string inOneLine = std::regex_replace(help, std::regex("\n +"), " ");
    for (const char* status : {"0 done", "1 failed", "2 usage", "3 wrong key", "4 map not scaled", "5 image",
                               "6 file", "7 file damaged", "129 hung up", "130 interrupted", "131 quit"})
        EXPECT_THAT(inOneLine, HasSubstr(status));
    EXPECT_EQ(Do({"-h"}), help);
}

TEST_F(Usage, HelpOfACommandExplainsEveryOptionAndGivesAnExample) {
    for (const auto& [command, options] : Commands) {
        const std::string help = Do({command, "--help"});
        EXPECT_THAT(help, HasSubstr("Usage: atlavex " + command));
        EXPECT_THAT(help, HasSubstr("Example:\n  "));
        EXPECT_THAT(help, HasSubstr("Exit status:"));
        for (const std::string& option : options)
            EXPECT_THAT(help, HasSubstr("\n  " + option)) << command;
    }
}

TEST_F(Usage, EveryCommandAndOptionStandsInTheManual) {
    std::string manual = ReadWholeFile(SOURCE_DIR "/docs/atlavex.1");
    std::erase(manual, '\\');
    for (const auto& [command, options] : Commands) {
        EXPECT_THAT(manual, HasSubstr("atlavex " + command)) << command;
        for (const std::string& option : options)
            EXPECT_THAT(manual, HasSubstr(option)) << command;
    }
}

TEST_F(Usage, ACommandLineThatMakesNoSenseEndsWithStatus2) {
    const std::string library = In("none.Atlavex");
    ExpectFailure(2, {}, "command");
    ExpectFailure(2, {"frobnicate"}, "'frobnicate'");
    ExpectFailure(2, {"line\nend"}, "'line\\nend'");
    ExpectFailure(2, {"--nonsense"}, "--nonsense");
    for (const auto& [command, options] : Commands)
        ExpectFailure(2, {command, "--nonsense"});
    ExpectFailure(2, {"info"}, "FILE is required");
    ExpectFailure(2, {"info", library, "more"}, "more");
    ExpectFailure(2, {"set", library, "map", "1"}, "required");
    ExpectFailure(2, {"set", library, "town", "1", "a=b"}, "'town'");
    ExpectFailure(2, {"set", library, "map", "1", "no-equals-sign"}, "no-equals-sign");
    ExpectFailure(2, {"set", library, "map", "1", "=value"}, "=value");
    ExpectFailure(2, {"rekey", library}, "--no-key");
    ExpectFailure(2, {"rekey", library, "--no-key", "--new-key-env", "K"}, "--no-key");
    ExpectFailure(2, {"info", library, "--key-file", "k", "--key-env", "K"}, "--key-file");
    ExpectFailure(2, {"project"}, "--grid");
    ExpectFailure(2, {"shift"}, "--datum");
    ExpectFailure(2, {"extract", library, "1", "--out", In("map.jpg")}, ".png");
    ExpectFailure(2, {"render", library, "1", "--zoom", "1", "--at", "0,0", "--size", "9x9"}, "--out");
    ExpectFailure(2, {"locate", library, "1", "5"}, "pair");
}

TEST_F(Usage, HelpIsACommandToo) {
    EXPECT_EQ(Do({"help"}), Do({"--help"}));
    for (const char* command : {"info", "add-map", "export-tiles"})
        EXPECT_EQ(Do({"help", command}), Do({command, "--help"}));
    ExpectFailure(2, {"help", "inof"}, "did you mean 'info'?");
    ExpectFailure(2, {"help", "info", "locate"}, "one command");
}

TEST_F(Usage, AMistypedCommandIsAnsweredWithTheOneThatWasMeant) {
    for (const auto& [typed, meant] : std::map<std::string, std::string>{{"inof", "info"},
                                                                         {"INFO", "info"},
                                                                         {"add_map", "add-map"},
                                                                         {"addmap", "add-map"},
                                                                         {"extract-icn", "extract-icon"},
                                                                         {"verfiy", "verify"},
                                                                         {"catalog", "catalogue"},
                                                                         {"hlep", "help"}})
        ExpectFailure(2, {typed},
                      "'" + typed + "' (atlavex --help lists them); did you mean '" + meant + "'?");
    const ProgramResult far = Run({"frobnicate"});
    EXPECT_THAT(far.err, testing::Not(HasSubstr("did you mean")));
}

TEST_F(Usage, AMistypedNameIsAnsweredWithTheOneThatWasMeant) {
    const std::string library = ScaledLibrary();
    ExpectFailure(1, {"locate", library, "Shete", "1", "1"}, "; did you mean 'Sheet'?");
    ExpectFailure(1, {"locate", library, "name:sheet", "1", "1"}, "; did you mean 'Sheet'?");
    ExpectFailure(1, {"offset", library, "Hat", "1,1"}, "; did you mean 'Hut'?");
    ExpectFailure(1, {"locate", library, "Elsewhere", "1", "1"}, "; the library has 1 map.");
    ExpectFailure(2, {"project", "--grid", "UTM (etsr89)", "--zone", "32"}, "; did you mean 'UTM (etrs89)'?");
    ExpectFailure(2, {"shift", "--datum", "ED5O"}, "; did you mean 'ED50'?");
}

TEST_F(Usage, NumbersAreTakenOnlyInTheirForm) {
    const std::string library = In("none.Atlavex"), image = In("none.png");
    for (const char* size : {"", "256", "256x", "x256", "256x256x256", "0x256", "-256x256", "2.5x256",
                             "256X256", "nanx1", "99999999999x1", " 256x256"})
        ExpectFailure(2, {"add-map", library, image, "--tile", size}, "--tile");
    for (const char* offset :
         {"1", "1,", ",1", "1,2,3", "1.5,2", "1;2", "a,b", "2147483648,0", "0,-2147483649"})
        ExpectFailure(2, {"offset", library, "1", offset});
    for (const char* number : {"", "x", "1,5", "nan", "inf", "0x10", "1e999", "1 2"})
        ExpectFailure(2, {"locate", library, "1", number, "1"});
    for (const char* zoom : {"0", "-1", "nan", "inf", "1,5", ""})
        ExpectFailure(
            2, {"render", library, "1", "--zoom", zoom, "--at", "0,0", "--size", "9x9", "--out", In("v.png")},
            "--zoom");
    ExpectFailure(
        2,
        {"render", library, "1", "--zoom", "1", "--at", "0,0", "--size", "99999x99999", "--out", In("v.png")},
        "--size");
    for (const char* point :
         {"1,2", "1,2=3", "1=2,3", "1,2=3,4,5", "1,2=3;4", "a,2=3,4", "1,2=nan,4", "1e300,2=3,4"})
        ExpectFailure(2,
                      {"scale", library, "1", "--datum", "WGS84", "--point", point, "--point", "1,2=3,4",
                       "--point", "5,6=7,8"},
                      "--point");
}

TEST_F(Usage, AScalingNeedsOneSystemAndOneSource) {
    const std::string library = In("none.Atlavex");
    const Words scale{"scale", library, "1"};
    const Words points{"--point", "0,0=9,48", "--point", "0,9=9,47", "--point", "9,9=10,47"};
    ExpectFailure(2, scale, "--grid");
    ExpectFailure(2, scale + points, "--grid");
    ExpectFailure(2, scale + points + Words{"--grid", "Swiss Grid (ch1903)", "--datum", "ED50"}, "--datum");
    ExpectFailure(2, scale + points + Words{"--datum", "ED50", "--zone", "32"}, "--zone");
    ExpectFailure(2, scale + Words{"--datum", "ED50"}, "--worldfile");
    ExpectFailure(2, scale + points + Words{"--datum", "ED50", "--worldfile", In("w")}, "one of");
    ExpectFailure(2, scale + Words{"--datum", "ED50", "--point", "1,1=1,1"}, "three times or more");
    ExpectFailure(2, scale + Words{"--datum", "ED50", "--corner", "1,1=1,1"}, "four times");
    ExpectFailure(2, {"add-map", library, In("none.png"), "--zone", "32"});
}
