#include "app/ReadOut.h"
#include "tests/app/ShellFixture.h"
#include "tests/support/desktop/ExpectedTexts.h"

#include <QAccessible>
#include <QFileDialog>
#include <QMenuBar>
#include <QMouseEvent>
#include <QScrollBar>
#include <QSlider>

namespace {

class MainWindow : public ShellTest {};

/// The entries of a menu, one a line: name and caption; separators by their name alone.
std::string TreeOf(const QMenuBar& bar) {
    std::string tree;
    for (const QAction* const menu : bar.actions()) {
        tree += menu->menu()->objectName().toStdString() + " " + menu->text().toStdString() + "\n";
        for (const QAction* const entry : menu->menu()->actions())
            tree += "  " + entry->objectName().toStdString() +
                    (entry->isSeparator() ? "" : " " + entry->text().toStdString()) + "\n";
    }
    return tree;
}

} // namespace

TEST_F(MainWindow, HasTheMenusInTheirOrder) {
    Start();
    EXPECT_EQ(TreeOf(*Window().menuBar()), R"(mFile &File
  mFileNewAtlavex &New Atlavex
  mFileOpenAtlavex &Open Atlavex...
  mnuMerge &Merge Atlavex
  dummy6
  mnuAtlavexProperties Atlavex &Properties
  mDummy7
  mFileSaveAtlavex &Save Atlavex
  mFileSaveAtlavexAs Save Atlavex &As...
  mnuTileExport &Export Tiles (for Dravomir Server)
  mFilePreferences Pre&ferences...
  mFileDummy
  mFileExit E&xit
mBitmap &Map
  mBitmapNew &New Map...
  mBitmapRename &Rename Map...
  mBitmapDelete &Delete Map
  mFileDummy2
  mnuMapMetaData Map &Properties
  mFileDummy6
  mBitmapScalingWizard Scaling &Wizard...
mIcons &Icons
  mIconsNewIcon &New Icon...
  mIconsRenameIcons &Rename Icon...
  mIconsDeleteIcon &Delete Icon
  mFileDummy3
  mnuIconMetaData Icon &Properties
  mFileDummy5
  mIconsOffset &Offset...
mHelp &Help
  mHelpGuide Developer's &Guide
  mHelpAbout &About
)");
}

TEST_F(MainWindow, StartsWithItsTextsAndOnTheMapPage) {
    Start();
    EXPECT_EQ(Title(), PlainTitle);
    EXPECT_EQ(TextOf("lHeader"), "Header");
    EXPECT_EQ(TextOf("lStatus"), NotScaledStatus);
    EXPECT_EQ(TextOf("lbZoom"), "Zoom:");
    EXPECT_EQ(TextOf("lbZoomPercentage"), "100%");
    EXPECT_EQ(TextOf("lbSize"), "");
    EXPECT_EQ(State().rememberedMap, -1);
    const auto& tabs = Find<QTabWidget>("tabAtlavex");
    EXPECT_EQ(tabs.count(), 2);
    EXPECT_EQ(tabs.tabText(1), QStringLiteral("Icons"));
    EXPECT_EQ(tabs.currentIndex(), 0);
    EXPECT_TRUE(Find<QWidget>("viewerMap").isVisible());
    EXPECT_FALSE(Find<QWidget>("viewerIcon").isVisible());
}

TEST_F(MainWindow, OffersOnlyWhatNeedsNoLibraryAtFirst) {
    Start();
    EXPECT_THAT(EnabledEntries(),
                testing::ElementsAre("mBitmapNew", "mFileExit", "mFileNewAtlavex", "mFileOpenAtlavex",
                                     "mFilePreferences", "mHelpAbout", "mHelpGuide", "mIconsNewIcon"));
}

TEST_F(MainWindow, HasItsControlsByNameAndKind) {
    Start();
    EXPECT_EQ(Find<QComboBox>("ddMaps").count(), 0);
    EXPECT_EQ(Find<QComboBox>("ddIcons").count(), 0);
    EXPECT_EQ(Find<KarvelViewer>("viewerMap").Image(), nullptr);
    EXPECT_EQ(Find<KarvelViewer>("viewerIcon").Image(), nullptr);
    for (const char* const name : {"hscrollMap", "hscrollIcon"})
        EXPECT_EQ(Find<QScrollBar>(name).orientation(), Qt::Horizontal);
    for (const char* const name : {"vscrollMap", "vscrollIcon"})
        EXPECT_EQ(Find<QScrollBar>(name).orientation(), Qt::Vertical);
    EXPECT_EQ(Find<QSlider>("sldZoom").value(), 0);
    EXPECT_FALSE(Find<QFileDialog>("FileDialog").isVisible());
}

TEST_F(MainWindow, ControlsWithoutACaptionHaveAName) {
    Start();
    for (const char* const name : {"ddMaps", "viewerMap", "hscrollMap", "vscrollMap", "sldZoom", "ddIcons",
                                   "viewerIcon", "hscrollIcon", "vscrollIcon"})
        EXPECT_FALSE(Find<QWidget>(name).accessibleName().isEmpty()) << name;
    EXPECT_EQ(Find<QLabel>("lbZoom").buddy(), &Find<QWidget>("sldZoom"));
}

TEST_F(MainWindow, TheMapViewTellsAssistiveProgramsWhatItShows) {
    Start();
    auto& viewer = Find<KarvelViewer>("viewerMap");
    const QAccessibleInterface* const told = QAccessible::queryAccessibleInterface(&viewer);
    ASSERT_NE(told, nullptr);
    EXPECT_EQ(told->role(), QAccessible::Graphic);
    EXPECT_EQ(told->text(QAccessible::Name), QStringLiteral("Map"));
    EXPECT_EQ(told->text(QAccessible::Value), QString());
    OpenByMenu(MakeLibrary("a.Atlavex", {{200, 100}}));
    const auto at = [](int x, int y) {
        return QStringLiteral("Pixel %1, %2, ").arg(x).arg(y) +
               GeographicReadOut(8 + x / 100.0, 56 - y / 100.0, AngleUnit::Degrees);
    };
    EXPECT_EQ(told->text(QAccessible::Value), at(100, 50)) << "the middle of what is seen";
    QMouseEvent move(QEvent::MouseMove, QPointF(3, 4), viewer.mapToGlobal(QPointF(3, 4)), Qt::NoButton,
                     Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(&viewer, &move);
    EXPECT_EQ(told->text(QAccessible::Value), at(3, 4));
    EXPECT_EQ(told->text(QAccessible::Description), at(3, 4));
    Choose("mFileNewAtlavex");
    EXPECT_EQ(told->text(QAccessible::Value), QString());
}

TEST_F(MainWindow, ShowsTextsAsTheyAre) {
    Start();
    for (const char* const name : {"lHeader", "lStatus", "lbSize", "lbZoomPercentage"})
        EXPECT_EQ(Find<QLabel>(name).textFormat(), Qt::PlainText) << name;
}

TEST_F(MainWindow, TabReachesWhatCanBeMoved) {
    Start();
    Focus("ddMaps");
    const QStringList order = TabOrder(Window());
    for (const char* const name : {"ddMaps", "viewerMap", "sldZoom"})
        EXPECT_TRUE(order.contains(QLatin1String(name))) << name;
}

TEST_F(MainWindow, HasShortcutsForTheUsualCommands) {
    Start();
    const auto has = [this](const char* entry, const QKeySequence& keys) {
        return Find<QAction>(entry).shortcuts().contains(keys);
    };
    EXPECT_TRUE(has("mFileNewAtlavex", Qt::CTRL | Qt::Key_N));
    EXPECT_TRUE(has("mFileOpenAtlavex", Qt::CTRL | Qt::Key_O));
    EXPECT_TRUE(has("mFileSaveAtlavex", Qt::CTRL | Qt::Key_S));
    EXPECT_TRUE(has("mFileSaveAtlavexAs", Qt::CTRL | Qt::SHIFT | Qt::Key_S));
    EXPECT_TRUE(has("mFileExit", Qt::CTRL | Qt::Key_Q));
    EXPECT_TRUE(has("mHelpGuide", Qt::Key_F1));
}

TEST_F(MainWindow, EntriesOpenTheirDialogs) {
    Start();
    const auto close = [](QWidget& window) { QTest::keyClick(&window, Qt::Key_Escape); };
    Expecting().Expect(QStringLiteral("frmAbout"), close);
    Choose("mHelpAbout");
    Expecting().Expect(QStringLiteral("frmPreferences"), close);
    Choose("mFilePreferences");
    ExpectFileDialog(QStringLiteral("Open new bitmap"), std::nullopt);
    Choose("mBitmapNew");
    ExpectFileDialog(QStringLiteral("Open new icon"), std::nullopt);
    Choose("mIconsNewIcon");
    ExpectFileDialog(QStringLiteral("Open Atlavex"), std::nullopt);
    Choose("mFileOpenAtlavex");
}

TEST_F(MainWindow, EntriesOfMapsAndIconsOpenTheirDialogs) {
    Start();
    OpenByMenu(MakeLibrary("a.Atlavex", {{20, 20}}, 1));
    const auto close = [](QWidget& window) { QTest::keyClick(&window, Qt::Key_Escape); };
    for (const auto& [entry, dialog] :
         {std::pair("mnuAtlavexProperties", "frmAtlavexProperties"), std::pair("mnuTileExport", "frmExport"),
          std::pair("mBitmapRename", "frmMetadata"), std::pair("mnuMapMetaData", "frmMetadata"),
          std::pair("mIconsRenameIcons", "frmMetadata"), std::pair("mnuIconMetaData", "frmMetadata"),
          std::pair("mIconsOffset", "frmOffset")}) {
        Expecting().Expect(QLatin1String(dialog), close);
        Choose(entry);
        EXPECT_TRUE(Expecting().IsDone()) << entry;
    }
    ExpectWizardGivenUp();
    Choose("mBitmapScalingWizard");
    for (const auto& [entry, question] :
         {std::pair("mBitmapDelete", DeleteMap1), std::pair("mIconsDeleteIcon", DeleteIcon1)}) {
        Expecting().ExpectBox(QLatin1String(question), QMessageBox::No);
        Choose(entry);
    }
    EXPECT_FALSE(State().modified);
}
