#include "tests/app/ProgressFixture.h"

#include <QDropEvent>
#include <QMimeData>
#include <QProgressBar>
#include <QScrollBar>
#include <QSlider>

namespace {

/// What the window does while a long operation runs.
class Progressing : public ProgressTest {};

} // namespace

TEST_F(Progressing, ShowsTheDialogBeforeTheFirstStep) {
    OpenSmallLibrary();
    bool seen = false;
    Probe().begun = [&](float) {
        seen = true;
        ASSERT_NE(Dialog(), nullptr);
        EXPECT_TRUE(Dialog()->isVisible());
        EXPECT_FALSE(Dialog()->isModal());
        EXPECT_TRUE(Dialog()->isEnabled());
        EXPECT_EQ(Dialog()->windowTitle(), QStringLiteral("Loading raster map..."));
        EXPECT_EQ(DialogText("lbProgress"), "Loading...");
        EXPECT_FALSE(Control<QLabel>(*Dialog(), "lbDebugProgress").isVisible());
        EXPECT_EQ(CancelButton().text(), QStringLiteral("Cancel"));
        EXPECT_FALSE(Window().isEnabled());
        ASSERT_NE(QApplication::overrideCursor(), nullptr);
        EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
    };
    Choose("mFileSaveAtlavex");
    EXPECT_TRUE(seen);
    ExpectRestored();
}

TEST_F(Progressing, LoadingSavingAndMergingEachShowIt) {
    const std::string file = MakeLibrary("b.Atlavex", {{20, 20}}, 1);
    Start();
    int begun = 0, progressed = 0, ended = 0;
    Probe().begun = [&](float) { ++begun; };
    Probe().progressed = [&](float) {
        ++progressed;
        EXPECT_THAT(DialogText("lbProgress"), testing::MatchesRegex("Loading\\.\\.\\.[0-9]+% complete\\."));
    };
    Probe().ended = [&] {
        ++ended;
        EXPECT_EQ(Dialog(), nullptr);
        EXPECT_TRUE(Window().isEnabled());
    };
    OpenByMenu(file);
    EXPECT_EQ(begun, 1);
    EXPECT_GE(progressed, 1);
    Choose("mFileSaveAtlavex");
    EXPECT_EQ(begun, 2);
    ExpectMergeDialog(file);
    Expecting().ExpectBox(QStringLiteral("Merge complete. \r\n1 map(s) added.\r\n1 icon(s) added."));
    Choose("mnuMerge");
    EXPECT_EQ(begun, 3);
    EXPECT_EQ(ended, 3);
}

TEST_F(Progressing, TellsThePercentageAndFillsTheBar) {
    OpenSmallLibrary();
    const auto library = State().objAtlavex;
    library->OnProgressBegin(200, *library);
    const auto& bar = Control<QProgressBar>(*Dialog(), "ProgressBar1");
    EXPECT_EQ(bar.maximum(), 200);
    library->OnProgress(84);
    EXPECT_EQ(DialogText("lbProgress"), "Loading...42% complete.");
    EXPECT_EQ(bar.value(), 84);
    library->OnProgress(85); // 42.5, to the even one
    EXPECT_EQ(DialogText("lbProgress"), "Loading...42% complete.");
    library->OnProgress(200);
    EXPECT_EQ(DialogText("lbProgress"), "Loading...100% complete.");
    library->OnProgressEnd();
    ExpectRestored();
}

TEST_F(Progressing, ATotalOfNothingIsNoDivision) {
    OpenSmallLibrary();
    const auto library = State().objAtlavex;
    library->OnProgressBegin(0, *library);
    library->OnProgress(0);
    EXPECT_EQ(DialogText("lbProgress"), "Loading...0% complete.");
    library->OnProgressEnd();
    ExpectRestored();
}

TEST_F(Progressing, TheCounterIsForDiagnosis) {
    const std::string file = MakeLibrary("a.Atlavex", {{20, 20}});
    Start({}, true);
    OpenByMenu(file);
    const auto library = State().objAtlavex;
    library->OnProgressBegin(200, *library);
    library->OnProgress(84);
    EXPECT_TRUE(Control<QLabel>(*Dialog(), "lbDebugProgress").isVisible());
    EXPECT_EQ(DialogText("lbDebugProgress"), "84 / 200");
    library->OnProgressEnd();
}

TEST_F(Progressing, EscapeAndCloseButtonsDoNothing) {
    OpenSmallLibrary();
    Edit();
    bool seen = false;
    AtFirstProgress([&] {
        seen = true;
        QTest::keyClick(Dialog(), Qt::Key_Escape);
        Dialog()->close();
        Window().close();
        QApplication::processEvents();
        ASSERT_NE(Dialog(), nullptr);
        EXPECT_TRUE(Dialog()->isVisible());
        EXPECT_TRUE(Window().isVisible());
        EXPECT_EQ(Window().minimumSize(), QSize(640, 400));
    });
    Choose("mFileSaveAtlavex");
    EXPECT_TRUE(seen);
    EXPECT_FALSE(State().modified);
    EXPECT_EQ(CountOf(TakeCalls(), "CancelOperation"), 0);
    ExpectRestored();
}

TEST_F(Progressing, NoCommandStartsMeanwhile) {
    OpenSmallLibrary();
    const std::string other = MakeLibrary("other.Atlavex", {{30, 30}});
    bool seen = false;
    AtFirstProgress([&] {
        seen = true;
        const auto map = State().currentMap;
        QTest::keyClick(&Window(), Qt::Key_N, Qt::ControlModifier);
        QTest::keyClick(&Window(), Qt::Key_O, Qt::ControlModifier);
        QTest::keyClick(&Window(), Qt::Key_9, Qt::ControlModifier);
        QTest::mouseClick(&Find<QWidget>("viewerMap"), Qt::LeftButton, {}, QPoint(5, 5));
        for (const char* const entry : {"mFileNewAtlavex", "mFileSaveAtlavex", "mFileExit", "mHelpAbout"})
            Find<QAction>(entry).trigger();
        // The entry that is shown, picked once more; then another way to the same.
        Q_EMIT Find<QComboBox>("ddMaps").activated(0);
        QTest::keyClick(&Find<QComboBox>("ddMaps"), Qt::Key_Down);
        ClickTab(1);
        TakeCalls();
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(QString::fromStdString(other))});
        QDropEvent drop(QPointF(50, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&Window(), &drop);
        QApplication::processEvents();
        EXPECT_EQ(State().currentMap, map);
        EXPECT_EQ(Find<QSlider>("sldZoom").value(), 0);
        EXPECT_THAT(TakeCalls(), testing::IsEmpty());
        EXPECT_EQ(Tabs().currentIndex(), 0);
    });
    Choose("mFileSaveAtlavex");
    QApplication::processEvents();
    EXPECT_TRUE(seen);
    EXPECT_EQ(Title(), "Quorvant Studio - " + PathOf("a.Atlavex"));
    EXPECT_NE(State().currentMap, nullptr);
}

TEST_F(Progressing, TheFocusComesBack) {
    OpenSmallLibrary();
    Focus("vscrollMap");
    PressShortcut(Qt::Key_S);
    EXPECT_EQ(CountOf(TakeCalls(), "SaveToFile key ''"), 1);
    EXPECT_EQ(Window().focusWidget(), &Find<QWidget>("vscrollMap"));
}

TEST_F(Progressing, AWindowThatChangesItsSizeMeanwhileAsksForNoPixels) {
    const std::string file = MakeLibrary("a.Atlavex", {{1500, 1200}}, 1);
    Start();
    OpenByMenu(file);
    PressShortcut(Qt::Key_0);
    const auto& bar = Find<QScrollBar>("hscrollMap");
    const int before = bar.maximum();
    AtFirstProgress([&] {
        Window().resize(700, 500);
        QApplication::processEvents();
        EXPECT_EQ(bar.maximum(), before);
    });
    Choose("mFileSaveAtlavex");
    EXPECT_GT(bar.maximum(), before);
}
