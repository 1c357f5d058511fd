#include "tests/cli/AtlavexTest.h"

#include <gmock/gmock.h>

#include <fstream>
#include <sstream>

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsSupersetOf;
using testing::Not;

class Completion : public AtlavexTest {
protected:
    /// The answer to a shell: what is to be offered, then the words without their explanations.
    Words Offered(const Words& typed) const {
        std::istringstream answer(Do(Words{"complete"} + typed));
        Words lines;
        for (std::string line; std::getline(answer, line);)
            lines.push_back(line.substr(0, line.find('\t')));
        return lines;
    }
};

const Words Nothing{"words"};

} // namespace

TEST_F(Completion, OffersTheCommandsWithWhatTheyDo) {
    EXPECT_THAT(Offered({""}), IsSupersetOf({"words", "help", "new", "add-map", "export-tiles", "shift"}));
    EXPECT_EQ(Offered({}), Offered({"sca"})) << "The shell chooses those that fit.";
    EXPECT_EQ(Offered({"help", ""}), Offered({""}));
    EXPECT_THAT(Do({"complete", ""}), testing::HasSubstr("\nscale\tTie a map's pixels to coordinates.\n"));
    EXPECT_THAT(Offered({"-"}), ElementsAre("words", "--help", "--version"));
    EXPECT_THAT(Offered({"nonsense", ""}), ElementsAre("nothing"));
}

TEST_F(Completion, OffersTheOptionsThatAreNotGivenYet) {
    EXPECT_THAT(Offered({"info", "a", ""}),
                ElementsAre("words", "--help", "--key-file", "--key-env", "--json"));
    EXPECT_THAT(Offered({"info", "--json", "a", "--"}), Not(Contains("--json")));
    const Words again = Offered({"scale", "a", "1", "--point", "0,0=1,1", "-"});
    EXPECT_THAT(again, Contains("--point")) << "It is given three times.";
    EXPECT_THAT(Offered({"info", "a", "--", "-"}), ElementsAre("nothing"));
}

TEST_F(Completion, KnowsWhichArgumentIsBeingTyped) {
    EXPECT_THAT(Offered({"info", ""}), ElementsAre("libraries"));
    EXPECT_THAT(Offered({"info", "--json", ""}), ElementsAre("libraries"));
    EXPECT_THAT(Offered({"info", "--key-env", "KEY", ""}), ElementsAre("libraries"));
    EXPECT_THAT(Offered({"merge", "a", "b", "c", ""}), ElementsAre("libraries"));
    EXPECT_THAT(Offered({"add-map", "a", ""}), ElementsAre("files"));
    EXPECT_THAT(Offered({"rekey", "a", "--new-key-file", ""}), ElementsAre("files"));
    EXPECT_THAT(Offered({"rekey", "a", "--new-key-file="}), ElementsAre("files"));
    EXPECT_THAT(Offered({"export-tiles", "a", "1", "--to", ""}), ElementsAre("folders"));
    EXPECT_THAT(Offered({"add-map", "a", "b", "--name", ""}), ElementsAre("nothing"));
    EXPECT_THAT(Offered({"remove", "a", ""}), ElementsAre("words", "map", "icon"));
    EXPECT_THAT(Offered({"info", "a", "--key-env", ""}), Contains("PATH"));
}

TEST_F(Completion, OffersTheNamesOfTheCatalogue) {
    EXPECT_THAT(Offered({"project", "--grid", ""}), IsSupersetOf({"UTM (etrs89)", "State Plane (nad27)"}));
    EXPECT_THAT(Offered({"project", "--grid=U"}), Contains("--grid=UTM (etrs89)"));
    EXPECT_THAT(Offered({"shift", "--datum", ""}), IsSupersetOf({"ED50", "LUREF"}));
    EXPECT_THAT(Offered({"project", "--grid", "State Plane (nad27)", "--zone", ""}),
                Contains("0101 Alabama East"));
    EXPECT_THAT(Offered({"project", "--grid=UTM (etrs89)", "--zone", ""}), IsSupersetOf({"1", "32", "60"}));
    EXPECT_EQ(Offered({"project", "--grid", "Swiss Grid (ch1903)", "--zone", ""}), Nothing);
}

TEST_F(Completion, OffersEachMapByATextThatChoosesIt) {
    const std::string library = NewLibrary();
    for (const char* const name : {"North", "Twice", "Twice", "12", "name:x", "-dash", "two\nlines"})
        Do({"add-map", library, Bmp("image.bmp", 40, 30), std::string("--name=") + name});
    Words texts = Offered({"locate", library, ""});
    EXPECT_THAT(texts, ElementsAre("words", "North", "2", "3", "name:12", "name:name:x", "name:-dash", "7"));
    texts.erase(texts.begin());
    for (const std::string& text : texts)
        Do({"extract", library, text, "--out", In("out.png")});
}

TEST_F(Completion, OffersIconsAndTheTextsThatBelongToThem) {
    const std::string library = ScaledLibrary();
    EXPECT_THAT(Offered({"offset", library, ""}), ElementsAre("words", "Hut"));
    EXPECT_THAT(Offered({"remove", library, "icon", ""}), ElementsAre("words", "Hut"));
    EXPECT_THAT(Offered({"remove", library, "map", ""}), ElementsAre("words", "Sheet"));
    EXPECT_THAT(Offered({"set", library, "map", "Sheet", ""}), IsSupersetOf({"words", "name=", "created="}));
    EXPECT_THAT(Offered({"unset", library, "icon", "1", "name", ""}), IsSupersetOf({"words", "created"}));
    EXPECT_EQ(Offered({"unset", library, "icon", "2", ""}), Nothing);
}

TEST_F(Completion, SaysNothingOfWhatCannotBeReadAtOnce) {
    const std::string sealed = SealedLibrary("sealed.Atlavex", "secret");
    const std::string key = Write("key", "secret");
    Do({"add-map", sealed, Bmp("image.bmp"), "--name", "Hidden", "--key-file", key});
    EXPECT_EQ(Offered({"locate", sealed, ""}), Nothing);
    EXPECT_EQ(Offered({"locate", sealed, "--key-file", key, ""}), Nothing);

    EXPECT_EQ(Offered({"locate", In("none.Atlavex"), ""}), Nothing);
    EXPECT_EQ(Offered({"locate", In(""), ""}), Nothing);
    EXPECT_EQ(Offered({"locate", Write("text.Atlavex", "no library"), ""}), Nothing);
    EXPECT_EQ(Offered({"locate", "/dev/zero", ""}), Nothing);

    const std::string busy = ScaledLibrary("busy.Atlavex");
    Write("busy.Atlavex-journal", "as while it is saved");
    EXPECT_EQ(Offered({"locate", busy, ""}), Nothing);
    EXPECT_EQ(FileNames().count("busy.Atlavex-journal"), 1U);
}
