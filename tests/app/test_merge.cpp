#include "tests/app/ShellFixture.h"
#include "tests/support/desktop/ExpectedTexts.h"

namespace {

/// Adding another library's maps and icons to the open one.
class Merging : public ShellTest {
protected:
    static QString Complete(const char* maps, const char* icons) {
        return QStringLiteral("Merge complete. \r\n%1 map(s) added.\r\n%2 icon(s) added.")
            .arg(QLatin1String(maps), QLatin1String(icons));
    }
    void StartWith(const std::string& file) {
        Start();
        OpenByMenu(file);
        TakeCalls();
    }
    void Merge(const std::string& file, const std::function<void()>& expect) {
        ExpectMergeDialog(file);
        expect();
        Choose("mnuMerge");
    }
    std::function<void()> Box(const QString& text) {
        return [this, text] { Expecting().ExpectBox(text); };
    }
};

} // namespace

TEST_F(Merging, AddsBehindWhatIsThereAndSaysHowMany) {
    const std::string other = MakeLibrary("other.Atlavex", {{25, 35}, {45, 55}}, 1);
    StartWith(MakeLibrary("a.Atlavex", {{20, 20}}, 2));
    Merge(other, Box(Complete("2", "1")));
    EXPECT_EQ(EntriesOf("ddMaps").size(), 3);
    EXPECT_EQ(EntriesOf("ddIcons").size(), 3);
    EXPECT_EQ(CountOf(TakeCalls(), "IsEncrypted"), 1);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(Merging, KeepsWhatIsSelected) {
    const std::string other = MakeLibrary("other.Atlavex", {{25, 35}}, 1);
    StartWith(MakeLibrary("a.Atlavex", {{20, 20}, {30, 40}}, 2));
    Pick("ddMaps", 1);
    Pick("ddIcons", 1);
    Merge(other, Box(Complete("1", "1")));
    EXPECT_EQ(EntryOf("ddMaps"), 1);
    EXPECT_EQ(EntryOf("ddIcons"), 1);
    EXPECT_EQ(State().rememberedMap, 1);
    EXPECT_EQ(TextOf("lbSize"), "Bitmap size: (30, 40)");
}

TEST_F(Merging, SaysTheSizeOfWhatThePageShows) {
    const std::string other = MakeLibrary("other.Atlavex", {{25, 35}}, 1);
    StartWith(MakeLibrary("a.Atlavex", {{20, 20}}, 1));
    ClickTab(1);
    Merge(other, Box(Complete("1", "1")));
    EXPECT_EQ(TextOf("lbSize"), "Icon size: (16, 16)");
    ClickTab(0);
    EXPECT_EQ(TextOf("lbSize"), "Bitmap size: (20, 20)");
}

TEST_F(Merging, SelectsTheFirstWhereNoneWas) {
    const std::string other = MakeLibrary("other.Atlavex", {{25, 35}});
    StartWith(MakeLibrary("icons.Atlavex", {}, 1));
    EXPECT_EQ(TextOf("lStatus"), NotScaledStatus);
    Merge(other, Box(Complete("1", "0")));
    EXPECT_EQ(EntryOf("ddMaps"), 0);
    EXPECT_EQ(TextOf("lbSize"), "Bitmap size: (25, 35)");
    EXPECT_TRUE(State().mapScaled);
    EXPECT_EQ(TextOf("lStatus"), ScaledStatus);
}

TEST_F(Merging, IconsAloneCount) {
    const std::string other = MakeLibrary("other.Atlavex", {}, 3);
    StartWith(MakeLibrary("a.Atlavex", {{20, 20}}));
    Merge(other, Box(Complete("0", "3")));
    EXPECT_EQ(EntryOf("ddIcons"), 0);
}

TEST_F(Merging, DoesNotSetTheDirtyFlagNorTheTitle) {
    const std::string file = MakeLibrary("a.Atlavex", {{20, 20}});
    const std::string other = MakeLibrary("other.Atlavex", {{25, 35}});
    StartWith(file);
    Merge(other, Box(Complete("1", "0")));
    EXPECT_FALSE(State().modified);
    EXPECT_EQ(Title(), "Quorvant Studio - " + file);
    EXPECT_EQ(State().fileName.toStdString(), file);
    EXPECT_TRUE(IsEnabled("mnuTileExport"));
}

TEST_F(Merging, TheSameFileTwiceAddsTwice) {
    const std::string other = MakeLibrary("other.Atlavex", {{25, 35}}, 1);
    StartWith(MakeLibrary("a.Atlavex", {{20, 20}}));
    Merge(other, Box(Complete("1", "1")));
    Merge(other, Box(Complete("1", "1")));
    EXPECT_EQ(EntriesOf("ddMaps").size(), 3);
}

TEST_F(Merging, TheOpenFileItself) {
    const std::string file = MakeLibrary("a.Atlavex", {{20, 20}}, 1);
    StartWith(file);
    Merge(file, Box(Complete("1", "1")));
    EXPECT_EQ(EntriesOf("ddMaps").size(), 2);
}

TEST_F(Merging, ASealedFileAsksForItsKeyWhichIsNotKept) {
    const std::string other = MakeLibrary("other.Atlavex", {{25, 35}}, 0, "sesame");
    const std::string file = MakeLibrary("a.Atlavex", {{20, 20}});
    StartWith(file);
    Merge(other, [this] {
        Expecting().ExpectInput(KeyPrompt, QStringLiteral("sesame")).ExpectBox(Complete("1", "0"));
    });
    EXPECT_EQ(CountOf(TakeCalls(), "MergeFromFile key 'sesame'"), 1);
    EXPECT_EQ(State().encryptionKey, QString());
    Choose("mFileSaveAtlavex");
    EXPECT_EQ(CountOf(TakeCalls(), "SaveToFile key ''"), 1);
    EXPECT_EQ(Open(file)->MapCount(), 2);
}

TEST_F(Merging, ASealedLibraryKeepsItsOwnKey) {
    const std::string file = MakeLibrary("a.Atlavex", {{20, 20}}, 0, "own");
    const std::string other = MakeLibrary("other.Atlavex", {{25, 35}}, 0, "sesame");
    Start();
    ExpectFileDialog(QStringLiteral("Open Atlavex"), file);
    Expecting().ExpectInput(KeyPrompt, QStringLiteral("own"));
    Choose("mFileOpenAtlavex");
    Merge(other, [this] {
        Expecting().ExpectInput(KeyPrompt, QStringLiteral("sesame")).ExpectBox(Complete("1", "0"));
    });
    EXPECT_EQ(State().encryptionKey, QStringLiteral("own"));
}

TEST_F(Merging, AWrongKeyAddsNothing) {
    const std::string other = MakeLibrary("other.Atlavex", {{25, 35}}, 0, "sesame");
    StartWith(MakeLibrary("a.Atlavex", {{20, 20}}, 1));
    Merge(other,
          [this] { Expecting().ExpectInput(KeyPrompt, QStringLiteral("wrong")).ExpectBox(NothingMerged); });
    EXPECT_EQ(EntriesOf("ddMaps").size(), 1);
    EXPECT_EQ(TextOf("lbSize"), "Bitmap size: (20, 20)");
    EXPECT_NE(State().currentIcon, nullptr);
}

TEST_F(Merging, AnEmptyOrCancelledKeyStopsSilently) {
    const std::string other = MakeLibrary("other.Atlavex", {{25, 35}}, 0, "sesame");
    StartWith(MakeLibrary("a.Atlavex", {{20, 20}}));
    for (const auto& key : {std::optional<QString>(), std::optional<QString>(QString())})
        Merge(other, [&] { Expecting().ExpectInput(KeyPrompt, key); });
    EXPECT_EQ(CountOf(TakeCalls(), "MergeFromFile key ''"), 0);
    EXPECT_EQ(EntriesOf("ddMaps").size(), 1);
}

TEST_F(Merging, AnEmptyLibraryAddsNothing) {
    const std::string other = MakeLibrary("empty.Atlavex", {});
    StartWith(MakeLibrary("a.Atlavex", {{20, 20}}));
    Merge(other, Box(NothingMerged));
}

TEST_F(Merging, ACancelledDialogDoesNothing) {
    StartWith(MakeLibrary("a.Atlavex", {{20, 20}}));
    ExpectMergeDialog(std::nullopt);
    Choose("mnuMerge");
    EXPECT_TRUE(TakeCalls().empty());
    EXPECT_NE(State().currentMap, nullptr);
}

TEST_F(Merging, AFileThatIsNoLibraryIsSaidAndChangesNothing) {
    WriteWholeFile(PathOf("text"), "no library, only some words of text to read\n");
    StartWith(MakeLibrary("a.Atlavex", {{20, 20}}));
    Merge(PathOf("text"),
          Box(QString::fromStdString("The file '" + PathOf("text") + "' is not a map library.")));
    EXPECT_EQ(EntriesOf("ddMaps").size(), 1);
    EXPECT_NE(State().currentMap, nullptr);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(Merging, AnUnscaledCurrentMapStaysSo) {
    const std::string other = MakeLibrary("other.Atlavex", {{25, 35}});
    StartWith(MakeMixedLibrary("a.Atlavex", {false}));
    Merge(other, Box(Complete("1", "0")));
    EXPECT_FALSE(State().mapScaled);
    EXPECT_EQ(TextOf("lStatus"), NotScaledStatus);
    Expecting().ExpectBox(ScaleBeforeChoosing);
    Pick("ddMaps", 1);
    EXPECT_EQ(EntryOf("ddMaps"), 0);
}

TEST_F(Merging, CountsByTheListsBeforeAndTheLibraryAfterwards) {
    const std::string other = MakeLibrary("other.Atlavex", {{25, 35}});
    StartWith(MakeLibrary("a.Atlavex", {{20, 20}}));
    Merge(other, Box(Complete("1", "0")));
    const auto calls = TakeCalls();
    const auto merged = std::find(calls.begin(), calls.end(), "MergeFromFile key ''");
    ASSERT_LE(merged + 3, calls.end());
    EXPECT_EQ(std::count(calls.begin(), merged, "MapCount"), 0);
    EXPECT_EQ(*(merged + 1), "MapCount");
    EXPECT_EQ(*(merged + 2), "IconCount");
}
