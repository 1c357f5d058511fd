#include "tests/app/ShellFixture.h"
#include "tests/support/desktop/ExpectedTexts.h"

#include <QSlider>

namespace {

using testing::ElementsAre;

/// Opening a library by the menu and by the command line.
class Opening : public ShellTest {
protected:
    QString Sentence(const std::string& file, const std::string& reason) {
        return QString::fromStdString("The file '" + file + "' " + reason);
    }
    /// Opens by the menu; `expect` says what comes after the file dialog.
    void OpenExpecting(const std::string& file, const std::function<void()>& expect) {
        ExpectFileDialog(QStringLiteral("Open Atlavex"), file);
        expect();
        Choose("mFileOpenAtlavex");
    }
    /// A library with something to save is open, under this name.
    std::string StartWithEdit() {
        const std::string file = MakeLibrary("old.Atlavex", {{20, 20}}, 1);
        Start();
        OpenByMenu(file);
        Find<QSlider>("sldZoom").setValue(3);
        Edit();
        return file;
    }
    /// The new, empty library is open; what was known of the former one is kept.
    void ExpectFailed(const std::string& oldFile, bool modified) {
        ASSERT_NE(State().objAtlavex, nullptr);
        EXPECT_EQ(State().objAtlavex->MapCount() + State().objAtlavex->IconCount(), 0);
        EXPECT_EQ(State().fileName.toStdString(), oldFile);
        EXPECT_EQ(Title(), "Quorvant Studio - " + oldFile);
        EXPECT_EQ(State().modified, modified);
        EXPECT_EQ(State().encryptionKey, QString());
        EXPECT_TRUE(EntriesOf("ddMaps").empty());
        EXPECT_TRUE(EntriesOf("ddIcons").empty());
        EXPECT_EQ(State().rememberedMap, -1);
        EXPECT_EQ(TextOf("lStatus"), NotScaledStatus);
        EXPECT_FALSE(Find<QSlider>("sldZoom").isEnabled());
        EXPECT_EQ(Find<QSlider>("sldZoom").value(), 0);
        EXPECT_EQ(TextOf("lbZoomPercentage"), "100%");
        EXPECT_EQ(QApplication::overrideCursor(), nullptr);
        ExpectNothingShown();
    }
};

} // namespace

TEST_F(Opening, ShowsTheFirstMapAndNamesTheFile) {
    const std::string file = MakeLibrary("a.Atlavex", {{200, 100}, {30, 40}}, 2);
    Start();
    OpenByMenu(file);
    EXPECT_EQ(Title(), "Quorvant Studio - " + file);
    EXPECT_EQ(EntriesOf("ddMaps"), QStringList({QStringLiteral("map1"), QStringLiteral("map2")}));
    EXPECT_EQ(EntriesOf("ddIcons"), QStringList({QStringLiteral("icon1"), QStringLiteral("icon2")}));
    EXPECT_EQ(EntryOf("ddMaps"), 0);
    EXPECT_EQ(EntryOf("ddIcons"), 0);
    EXPECT_EQ(TextOf("lbSize"), "Bitmap size: (200, 100)");
    EXPECT_EQ(TextOf("lStatus"), ScaledStatus);
    EXPECT_TRUE(State().mapScaled);
    EXPECT_FALSE(State().modified);
    EXPECT_EQ(State().rememberedMap, 0);
    EXPECT_EQ(State().fileName.toStdString(), file);
}

TEST_F(Opening, SaysTheSizeOfWhatThePageShows) {
    const std::string file = MakeLibrary("a.Atlavex", {{200, 100}}, 1);
    Start();
    ClickTab(1);
    OpenByMenu(file);
    EXPECT_EQ(TextOf("lbSize"), "Icon size: (16, 16)");
    ClickTab(0);
    EXPECT_EQ(TextOf("lbSize"), "Bitmap size: (200, 100)");
    ClickTab(1);
    OpenByMenu(MakeLibrary("maps.Atlavex", {{30, 40}}));
    EXPECT_EQ(TextOf("lbSize"), "") << "the page of icons, and there is none";
}

TEST_F(Opening, AsksTwiceWhetherItIsSealedAndCountsBeforeAndAfter) {
    const std::string file = MakeLibrary("a.Atlavex", {{20, 20}}, 1);
    Start();
    OpenByMenu(file);
    auto calls = TakeCalls();
    const auto asked = std::find(calls.begin(), calls.end(), "IsEncrypted");
    ASSERT_GE(std::distance(asked, calls.end()), 7);
    EXPECT_THAT(RecordingLibrary::Log(asked, asked + 7),
                ElementsAre("IsEncrypted", "IsEncrypted", "MapCount", "IconCount", "LoadFromFile key ''",
                            "MapCount", "IconCount"));
    EXPECT_EQ(CountOf(calls, "IsEncrypted"), 2);
    EXPECT_EQ(CountOf(calls, "LoadFromFile key ''"), 1);
}

TEST_F(Opening, ASealedFileAsksForItsKey) {
    const std::string file = MakeLibrary("a.Atlavex", {{20, 20}}, 0, "sesame");
    Start();
    OpenExpecting(file, [this] { Expecting().ExpectInput(KeyPrompt, QStringLiteral("sesame")); });
    EXPECT_EQ(State().encryptionKey, QStringLiteral("sesame"));
    EXPECT_EQ(EntriesOf("ddMaps").size(), 1);
    const auto calls = TakeCalls();
    EXPECT_EQ(CountOf(calls, "IsEncrypted"), 2);
    EXPECT_EQ(CountOf(calls, "LoadFromFile key 'sesame'"), 1);
}

TEST_F(Opening, TheKeyPromptHasTheNormalPointerAndTheDefaultTitle) {
    const std::string file = MakeLibrary("a.Atlavex", {{20, 20}}, 0, "sesame");
    Start();
    OpenExpecting(file, [this] {
        Expecting().Expect(QStringLiteral("InputBox"), [](QWidget& window) {
            EXPECT_EQ(window.windowTitle(), QStringLiteral("Quorvant Studio"));
            ASSERT_NE(QApplication::overrideCursor(), nullptr);
            EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::ArrowCursor);
            QTest::keyClick(&window, Qt::Key_Escape);
        });
    });
}

TEST_F(Opening, AWrongKeyLoadsNothingAndKeepsTitleAndFlag) {
    const std::string sealed = MakeLibrary("sealed.Atlavex", {{20, 20}}, 1, "sesame");
    const std::string old = StartWithEdit();
    ExpectSaveQuestion(QMessageBox::No);
    OpenExpecting(sealed, [this] {
        Expecting().ExpectInput(KeyPrompt, QStringLiteral("Sesame")).ExpectBox(NothingLoaded);
    });
    ExpectFailed(old, true);
}

TEST_F(Opening, AnEmptyOrCancelledKeyStopsSilently) {
    const std::string sealed = MakeLibrary("sealed.Atlavex", {{20, 20}}, 1, "sesame");
    const std::string old = MakeLibrary("old.Atlavex", {{20, 20}}, 1);
    Start();
    for (const auto& key : {std::optional<QString>(), std::optional<QString>(QString())}) {
        OpenByMenu(old);
        TakeCalls();
        OpenExpecting(sealed, [&] { Expecting().ExpectInput(KeyPrompt, key); });
        ExpectFailed(old, false);
        EXPECT_EQ(CountOf(TakeCalls(), "LoadFromFile key ''"), 0);
    }
}

TEST_F(Opening, AnIconAloneIsDataToo) {
    const std::string file = MakeLibrary("icons.Atlavex", {}, 1);
    Start();
    OpenByMenu(file);
    EXPECT_EQ(Title(), "Quorvant Studio - " + file);
    EXPECT_EQ(EntriesOf("ddIcons"), QStringList(QStringLiteral("icon1")));
    EXPECT_EQ(State().currentMap, nullptr);
    EXPECT_NE(State().currentIcon, nullptr);
    EXPECT_EQ(TextOf("lStatus"), NotScaledStatus);
}

TEST_F(Opening, AnEmptyLibraryLoadsNothing) {
    const std::string file = MakeLibrary("empty.Atlavex", {});
    Start();
    OpenExpecting(file, [this] { Expecting().ExpectBox(NothingLoaded); });
    EXPECT_EQ(Title(), PlainTitle);
    EXPECT_TRUE(IsEnabled("mFileSaveAtlavex"));
}

TEST_F(Opening, WhatIsNoLibraryIsSaidInTheComponentsWords) {
    WriteWholeFile(PathOf("text.Atlavex"), "This is no map library, only some words of text.\n");
    const std::string old = StartWithEdit();
    ExpectSaveQuestion(QMessageBox::No);
    OpenExpecting(PathOf("text.Atlavex"), [this] {
        Expecting().ExpectBox(Sentence(PathOf("text.Atlavex"), "is not a map library."));
    });
    ExpectFailed(old, true);
}

TEST_F(Opening, ADamagedFileIsSaidToBe) {
    const std::string file = MakeLibrary("a.Atlavex", {{20, 20}}, 1);
    std::string content = ReadWholeFile(file);
    std::fill(content.begin() + 200, content.end(), '\x5a');
    WriteWholeFile(file, content);
    const std::string old = StartWithEdit();
    ExpectSaveQuestion(QMessageBox::No);
    OpenExpecting(file, [&] {
        Expecting().Expect(QStringLiteral("MessageBox"), [file](QWidget& window) {
            EXPECT_THAT(dynamic_cast<QMessageBox&>(window).text().toStdString(), testing::HasSubstr(file));
            QTest::keyClick(&window, Qt::Key_Return);
        });
    });
    ExpectFailed(old, true);
}

TEST_F(Opening, ANewerVersionIsRefused) {
    const std::string file = MakeLibrary("a.Atlavex", {{20, 20}}, 1);
    // The version stands in the database's "user version", big-endian at byte 60 of its header.
    std::string content = ReadWholeFile(file);
    content[60] = 0;
    content[61] = 0;
    content[62] = 0;
    content[63] = 99;
    WriteWholeFile(file, content);
    const std::string old = StartWithEdit();
    ExpectSaveQuestion(QMessageBox::No);
    OpenExpecting(file, [&] {
        Expecting().Expect(QStringLiteral("MessageBox"), [file](QWidget& window) {
            EXPECT_THAT(dynamic_cast<QMessageBox&>(window).text().toStdString(),
                        testing::StartsWith("The file '" + file + "' has format version 99; this program"));
            QTest::keyClick(&window, Qt::Key_Return);
        });
    });
    ExpectFailed(old, true);
}

TEST_F(Opening, OpeningAPlainFileForgetsTheFormerKey) {
    const std::string sealed = MakeLibrary("sealed.Atlavex", {{20, 20}}, 0, "sesame");
    const std::string plain = MakeLibrary("plain.Atlavex", {{20, 20}});
    Start();
    OpenExpecting(sealed, [this] { Expecting().ExpectInput(KeyPrompt, QStringLiteral("sesame")); });
    OpenByMenu(plain);
    EXPECT_EQ(State().encryptionKey, QString());
}

TEST_F(Opening, AnUnscaledMapIsShownAsSuch) {
    Start();
    OpenByMenu(MakeMixedLibrary("a.Atlavex", {false, true}));
    EXPECT_FALSE(State().mapScaled);
    EXPECT_EQ(TextOf("lStatus"), NotScaledStatus);
}

TEST_F(Opening, TakesAFreshLibraryEachTime) {
    const std::string file = MakeLibrary("a.Atlavex", {{20, 20}});
    Start();
    OpenByMenu(file);
    const std::weak_ptr<AtlavexLibrary> first = State().objAtlavex;
    const std::weak_ptr<AtlavexMap> map = State().currentMap;
    OpenByMenu(file);
    EXPECT_TRUE(first.expired());
    EXPECT_TRUE(map.expired());
    EXPECT_EQ(EntriesOf("ddMaps").size(), 1);
}

TEST_F(Opening, TheDialogStartsWhereTheLastOneEnded) {
    const std::string file = MakeLibrary("a.Atlavex", {{20, 30}});
    Start();
    OpenByMenu(file);
    Expecting().Expect(QStringLiteral("FileDialog"), [this](QWidget& window) {
        const auto& dialog = dynamic_cast<QFileDialog&>(window);
        EXPECT_EQ(dialog.directory().absolutePath().toStdString(),
                  std::filesystem::path(PathOf("a")).parent_path().string());
        EXPECT_EQ(dialog.nameFilters().size(), 2);
        QTest::keyClick(&window, Qt::Key_Escape);
    });
    Choose("mnuMerge");
}
