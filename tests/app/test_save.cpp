#include "tests/app/ShellFixture.h"
#include "tests/support/desktop/ExpectedTexts.h"

#include <QRegularExpression>
#include <QWindow>

namespace {

using testing::ElementsAre;

/// Save and Save As.
class Saving : public ShellTest {
protected:
    void StartWith(const std::string& file) {
        Start();
        OpenByMenu(file);
        TakeCalls();
    }
    /// A library with a map of this identifier, open in the window.
    std::string LibraryWithIdentifier(const std::string& identifier) {
        const std::string file = MakeLibrary("a.Atlavex", {{20, 20}}, 1);
        const auto library = Open(file);
        MapAt(*library, 1)->SetIdentifier(identifier);
        library->SaveToFile(file, {});
        return file;
    }
    static bool IsDate(const std::string& text) {
        return QRegularExpression(QStringLiteral("^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d$"))
            .match(QString::fromStdString(text))
            .hasMatch();
    }
};

} // namespace

TEST_F(Saving, AnUnscaledMapIsRefusedBySaveAndSaveAs) {
    StartWith(MakeMixedLibrary("a.Atlavex", {false}));
    for (const char* const entry : {"mFileSaveAtlavex", "mFileSaveAtlavexAs"}) {
        Expecting().ExpectBox(ScaleBeforeSaving);
        Choose(entry);
    }
    EXPECT_EQ(CountOf(TakeCalls(), "SaveToFile key ''"), 0);
}

TEST_F(Saving, OnlyTheCurrentMapIsChecked) {
    const std::string file = MakeMixedLibrary("a.Atlavex", {true, false});
    StartWith(file);
    Choose("mFileSaveAtlavex");
    EXPECT_EQ(CountOf(TakeCalls(), "SaveToFile key ''"), 1);
}

TEST_F(Saving, WithoutMapsNothingIsAskedOfScaling) {
    const std::string file = MakeLibrary("icons.Atlavex", {}, 2);
    StartWith(file);
    Edit();
    Choose("mFileSaveAtlavex");
    EXPECT_FALSE(State().modified);
    EXPECT_EQ(IconAt(*Open(file), 1)->OffsetX(), 5);
}

TEST_F(Saving, GoesToTheOpenFileUnderItsKey) {
    const std::string file = MakeLibrary("a.Atlavex", {{20, 20}}, 1, "sesame");
    Start();
    ExpectFileDialog(QStringLiteral("Open Atlavex"), file);
    Expecting().ExpectInput(KeyPrompt, QStringLiteral("sesame"));
    Choose("mFileOpenAtlavex");
    Edit();
    TakeCalls();
    Choose("mFileSaveAtlavex");
    EXPECT_EQ(CountOf(TakeCalls(), "SaveToFile key 'sesame'"), 1);
    EXPECT_FALSE(State().modified);
    EXPECT_EQ(Title(), "Quorvant Studio - " + file);
    EXPECT_EQ(IconAt(*Open(file, "sesame"), 1)->OffsetX(), 5);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(Saving, StampsEveryMapAndIcon) {
    const std::string file = MakeLibrary("a.Atlavex", {{20, 20}, {30, 30}}, 2);
    StartWith(file);
    Choose("mFileSaveAtlavex");
    const auto saved = Open(file);
    for (int position = 1; position <= 2; ++position) {
        EXPECT_PRED1(IsDate, MapAt(*saved, position)->GetMetadata("lastchanged"));
        EXPECT_PRED1(IsDate, IconAt(*saved, position)->GetMetadata("lastchanged"));
    }
}

TEST_F(Saving, GivesAMapWithoutAGoodIdentifierANewOne) {
    const std::string file = LibraryWithIdentifier("no identifier");
    StartWith(file);
    Choose("mFileSaveAtlavex");
    const QString identifier = QString::fromStdString(MapAt(*Open(file), 1)->Identifier());
    EXPECT_TRUE(QRegularExpression(QStringLiteral("^[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}$"))
                    .match(identifier)
                    .hasMatch())
        << identifier.toStdString();
}

TEST_F(Saving, LeavesAGoodIdentifierAlone) {
    const std::string file = LibraryWithIdentifier("01234567-89AB-CDEF-0123-456789ABCDEF");
    StartWith(file);
    Choose("mFileSaveAtlavex");
    EXPECT_EQ(MapAt(*Open(file), 1)->Identifier(), "01234567-89AB-CDEF-0123-456789ABCDEF");
}

TEST_F(Saving, FetchesTheSelectedEntriesAnewAfterwards) {
    StartWith(MakeLibrary("a.Atlavex", {{20, 20}, {30, 30}}, 2));
    Pick("ddMaps", 1);
    Pick("ddIcons", 1);
    TakeCalls();
    Choose("mFileSaveAtlavex");
    const auto calls = TakeCalls();
    const auto saved = std::find(calls.begin(), calls.end(), "SaveToFile key ''");
    ASSERT_NE(saved, calls.end());
    EXPECT_THAT(RecordingLibrary::Log(saved + 1, calls.end()),
                ElementsAre("MapIdAt 2", "GetMap", "IconIdAt 2", "GetIcon"));
    EXPECT_EQ(EntryOf("ddMaps"), 1);
    EXPECT_EQ(EntryOf("ddIcons"), 1);
    EXPECT_EQ(Find<KarvelViewer>("viewerMap").Image()->Width(), 30);
}

TEST_F(Saving, WithoutAnIconFetchesTheMapAlone) {
    StartWith(MakeLibrary("a.Atlavex", {{20, 20}}));
    Choose("mFileSaveAtlavex");
    const auto calls = TakeCalls();
    EXPECT_THAT(calls.back(), "GetMap");
    EXPECT_EQ(CountOf(calls, "GetIcon"), 0);
}

TEST_F(Saving, TheSizeTextIsThatOfThePageShown) {
    StartWith(MakeLibrary("a.Atlavex", {{20, 30}}, 1));
    Choose("mFileSaveAtlavex");
    EXPECT_EQ(TextOf("lbSize"), "Bitmap size: (20, 30)");
    ClickTab(1);
    Choose("mFileSaveAtlavex");
    EXPECT_EQ(TextOf("lbSize"), "Icon size: (16, 16)");
}

TEST_F(Saving, DoesNotTouchTheScaledFlag) {
    StartWith(MakeMixedLibrary("a.Atlavex", {true, false}));
    Choose("mFileSaveAtlavex");
    EXPECT_TRUE(State().mapScaled);
    EXPECT_EQ(TextOf("lStatus"), ScaledStatus);
}

TEST_F(Saving, AsTakesTheNewNameCompletedByTheEndingOfTheFilter) {
    const std::string file = MakeLibrary("a.Atlavex", {{20, 20}}, 1);
    StartWith(file);
    Edit();
    ExpectSaveDialog(PathOf("copy without ending"));
    Choose("mFileSaveAtlavexAs");
    EXPECT_EQ(State().fileName.toStdString(), PathOf("copy without ending.Atlavex"));
    EXPECT_EQ(Title(), "Quorvant Studio - " + PathOf("copy without ending.Atlavex"));
    EXPECT_FALSE(State().modified);
    EXPECT_EQ(IconAt(*Open(PathOf("copy without ending.Atlavex")), 1)->OffsetX(), 5);
    EXPECT_EQ(IconAt(*Open(file), 1)->OffsetX(), 0);
}

TEST_F(Saving, ACancelledSaveAsChangesNothing) {
    const std::string file = MakeLibrary("a.Atlavex", {{20, 20}}, 1);
    StartWith(file);
    Edit();
    ExpectSaveDialog(std::nullopt);
    Choose("mFileSaveAtlavexAs");
    EXPECT_TRUE(State().modified);
    EXPECT_EQ(Title(), "Quorvant Studio - " + file);
    const auto calls = TakeCalls();
    EXPECT_EQ(CountOf(calls, "SaveToFile key ''"), 0);
    EXPECT_EQ(MapAt(*State().objAtlavex, 1)->GetMetadata("lastchanged"), "");
}

TEST_F(Saving, WithoutAFileNameIsSaveAs) {
    Start();
    AddIconByMenu();
    ExpectSaveDialog(PathOf("first.Atlavex"));
    Choose("mFileSaveAtlavex");
    EXPECT_EQ(Title(), "Quorvant Studio - " + PathOf("first.Atlavex"));
    Edit();
    Choose("mFileSaveAtlavex");
    EXPECT_EQ(IconAt(*Open(PathOf("first.Atlavex")), 1)->OffsetX(), 5);
}

TEST_F(Saving, TheTitleShowsTheNameAsItIs) {
    const std::string file = MakeLibrary("a[*]b.Atlavex", {{20, 20}});
    Start();
    OpenByMenu(file);
    EXPECT_EQ(Window().windowHandle()->title().toStdString(), "Quorvant Studio - " + file);
}
