#include "tests/app/ShellFixture.h"

namespace {

/// What the preferences do in the rest of the editor.
class PreferencesUse : public ShellTest {
protected:
    void SetPreferences(const std::function<void(QWidget&)>& set, const char* button = "btnOK") {
        Expecting().Expect(QStringLiteral("frmPreferences"), [set, button](QWidget& window) {
            set(window);
            Click(window, button);
        });
        Choose("mFilePreferences");
    }
    /// Adds an image as a map and gives up the wizard; what the settings proposed as tile size.
    QString ProposedTile() {
        const std::string image = ImageOf(MakeSheet(PixelFormat::Rgb, 33, 22));
        QString tile;
        ExpectFileDialog(QStringLiteral("Open new bitmap"), image);
        Expecting().Expect(QStringLiteral("frmNewMap"), [&tile](QWidget& window) {
            tile = Control<QComboBox>(window, "ddTileWidth").currentText() + QLatin1Char('x') +
                   Control<QComboBox>(window, "ddTileHeight").currentText();
            Click(window, "btnOK");
        });
        ExpectWizardGivenUp();
        Choose("mBitmapNew");
        return tile;
    }
    static void ChooseTile(QWidget& window, int width, int height) {
        for (const auto& [name, entry] :
             {std::pair("ddTileWidth", width), std::pair("ddTileHeight", height)}) {
            auto& list = Control<QComboBox>(window, name);
            list.setFocus();
            QTest::keyClick(&list, Qt::Key_Home);
            for (int i = 0; i < entry; ++i)
                QTest::keyClick(&list, Qt::Key_Down);
        }
    }
};

} // namespace

TEST_F(PreferencesUse, ATileOf256IsProposedAtFirst) {
    Start();
    EXPECT_EQ(ProposedTile(), QStringLiteral("256x256"));
}

TEST_F(PreferencesUse, TheChosenTileIsProposed) {
    Start();
    SetPreferences([](QWidget& window) { ChooseTile(window, 0, 4); });
    EXPECT_EQ(ProposedTile(), QStringLiteral("64x1024"));
}

TEST_F(PreferencesUse, ACancelledChoiceIsNotProposed) {
    Start();
    SetPreferences([](QWidget& window) { ChooseTile(window, 0, 4); }, "btnCancel");
    EXPECT_EQ(ProposedTile(), QStringLiteral("256x256"));
}

TEST_F(PreferencesUse, TheFolderHoldsTheScratchFileWhenItExists) {
    std::filesystem::create_directory(PathOf("mine"));
    Start();
    SetPreferences(
        [this](QWidget& window) { TypeInto(window, "txtTempPath", QString::fromStdString(PathOf("mine"))); });
    ProposedTile();
    EXPECT_FALSE(Names(PathOf("mine")).empty());
}

TEST_F(PreferencesUse, TheFolderHoldsWhatIsAddedNextToTheLibraryThatIsOpen) {
    std::filesystem::create_directory(PathOf("mine"));
    Start();
    AddIconByMenu();
    ASSERT_EQ(Names(ScratchFolder()).size(), 1U);
    SetPreferences(
        [this](QWidget& window) { TypeInto(window, "txtTempPath", QString::fromStdString(PathOf("mine"))); });
    AddIconByMenu();
    EXPECT_EQ(Names(PathOf("mine")).size(), 1U);
    EXPECT_EQ(Names(ScratchFolder()).size(), 1U) << "what was added before stays where it is";
    ExpectSaveDialog(PathOf("a.Atlavex"));
    Choose("mFileSaveAtlavex");
    EXPECT_EQ(Open(PathOf("a.Atlavex"))->IconCount(), 2);
}

TEST_F(PreferencesUse, AFolderThatHasGoneDoesNotStopTheAdding) {
    std::filesystem::create_directory(PathOf("mine"));
    Start();
    SetPreferences(
        [this](QWidget& window) { TypeInto(window, "txtTempPath", QString::fromStdString(PathOf("mine"))); });
    AddIconByMenu();
    std::filesystem::remove_all(PathOf("mine"));
    AddIconByMenu();
    ExpectSaveDialog(PathOf("a.Atlavex"));
    Choose("mFileSaveAtlavex");
    EXPECT_EQ(Open(PathOf("a.Atlavex"))->IconCount(), 2);
    AddIconByMenu();
    Choose("mFileSaveAtlavex");
    EXPECT_EQ(Open(PathOf("a.Atlavex"))->IconCount(), 3);
}

TEST_F(PreferencesUse, AFolderThatIsNotThereIsNotUsed) {
    Start();
    SetPreferences(
        [this](QWidget& window) { TypeInto(window, "txtTempPath", QString::fromStdString(PathOf("none"))); });
    ProposedTile();
    EXPECT_FALSE(std::filesystem::exists(PathOf("none")));
    EXPECT_FALSE(Names(ScratchFolder()).empty());
}
