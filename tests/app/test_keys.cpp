#include "tests/app/ShellFixture.h"

#include <QScrollBar>

namespace {

/// The arrow keys, which move the map's scroll bars.
class Keys : public ShellTest {
protected:
    QScrollBar& Horizontal() { return Find<QScrollBar>("hscrollMap"); }
    QScrollBar& Vertical() { return Find<QScrollBar>("vscrollMap"); }

    /// A map of this size, as large as it can be shown, in a small window, scrolled to the upper left.
    void StartWithMap(const QSize& size) {
        Start();
        Window().resize(640, 400);
        OpenByMenu(MakeLibrary("a.Atlavex", {size}, 1));
        QTest::keyClick(&Find<QSlider>("sldZoom"), Qt::Key_End);
        ASSERT_GT(Horizontal().maximum(), 20);
        ASSERT_GT(Vertical().maximum(), 20);
        Horizontal().setValue(0);
        Vertical().setValue(0);
        Focus("viewerMap");
    }
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(Window().focusWidget(), key, modifiers);
    }
    QPoint Position() { return {Horizontal().value(), Vertical().value()}; }
};

} // namespace

TEST_F(Keys, MoveByOneUnit) {
    StartWithMap({300, 300});
    Press(Qt::Key_Right);
    Press(Qt::Key_Right);
    Press(Qt::Key_Down);
    EXPECT_EQ(Position(), QPoint(2, 1));
    Press(Qt::Key_Left);
    Press(Qt::Key_Up);
    EXPECT_EQ(Position(), QPoint(1, 0));
}

TEST_F(Keys, WithCtrlMoveByATenthOfTheMapRoundedToEven) {
    StartWithMap({95, 85});
    Press(Qt::Key_Right, Qt::ControlModifier);
    EXPECT_EQ(Position(), QPoint(10, 0)) << "9.5 is rounded to 10.";
    Press(Qt::Key_Down, Qt::ControlModifier);
    EXPECT_EQ(Position(), QPoint(10, 8)) << "8.5 is rounded to 8.";
    Press(Qt::Key_Left, Qt::ControlModifier);
    Press(Qt::Key_Up, Qt::ControlModifier);
    EXPECT_EQ(Position(), QPoint(0, 0));
}

TEST_F(Keys, AMapOf85PixelsMovesBy8) {
    StartWithMap({85, 95});
    Press(Qt::Key_Right, Qt::ControlModifier);
    EXPECT_EQ(Position(), QPoint(8, 0));
}

TEST_F(Keys, OnlyCtrlAloneMakesTheStepLarge) {
    StartWithMap({300, 300});
    Press(Qt::Key_Right, Qt::ControlModifier | Qt::ShiftModifier);
    Press(Qt::Key_Right, Qt::ControlModifier | Qt::AltModifier);
    Press(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(Position(), QPoint(3, 0));
}

TEST_F(Keys, TheNumberPadsArrowsAreArrows) {
    StartWithMap({300, 300});
    Press(Qt::Key_Right, Qt::KeypadModifier);
    EXPECT_EQ(Position(), QPoint(1, 0));
    Press(Qt::Key_Right, Qt::KeypadModifier | Qt::ControlModifier);
    EXPECT_EQ(Position(), QPoint(31, 0));
}

TEST_F(Keys, StopAtTheEnds) {
    StartWithMap({300, 300});
    Press(Qt::Key_Up);
    Press(Qt::Key_Left, Qt::ControlModifier);
    EXPECT_EQ(Position(), QPoint(0, 0));
    Horizontal().setValue(Horizontal().maximum() - 5);
    Vertical().setValue(Vertical().maximum());
    Press(Qt::Key_Right, Qt::ControlModifier);
    Press(Qt::Key_Down);
    EXPECT_EQ(Position(), QPoint(Horizontal().maximum(), Vertical().maximum()));
}

TEST_F(Keys, OnAScrollBarMoveItOnce) {
    StartWithMap({300, 300});
    for (QScrollBar* const bar : {&Horizontal(), &Vertical()}) {
        bar->setFocusPolicy(Qt::StrongFocus);
        bar->setFocus();
        ASSERT_EQ(Window().focusWidget(), bar);
        Horizontal().setValue(0);
        Vertical().setValue(0);
        Press(Qt::Key_Right);
        Press(Qt::Key_Down);
        EXPECT_EQ(Position(), QPoint(1, 1));
    }
}

TEST_F(Keys, OnTheSliderMoveBothOnce) {
    StartWithMap({300, 300});
    auto& slider = Find<QSlider>("sldZoom");
    slider.setFocus();
    Press(Qt::Key_Left);
    EXPECT_EQ(slider.value(), slider.maximum() - 1);
    Horizontal().setValue(50);
    Press(Qt::Key_Left);
    EXPECT_EQ(slider.value(), slider.maximum() - 2);
    // The key first, then the zoom, which keeps the middle of the view.
    const double half = Find<KarvelViewer>("viewerMap").PixelWidth() / 2.0;
    EXPECT_NEAR(Horizontal().value(), (49 + half) * std::exp(-0.1) - half, 1);
}

TEST_F(Keys, OnAListReachTheList) {
    Start();
    OpenByMenu(MakeLibrary("a.Atlavex", {{20, 20}, {30, 40}}));
    Focus("ddMaps");
    Press(Qt::Key_Down);
    EXPECT_EQ(EntryOf("ddMaps"), 1);
}

TEST_F(Keys, OnTheIconsPageMoveTheIcon) {
    const std::string file = MakeLibrary("a.Atlavex", {{3000, 3000}});
    {
        const auto library = Open(file);
        AddIcon(*library, MakeSheet(PixelFormat::Rgb, 1500, 1300), "large");
        library->SaveToFile(file, {});
    }
    Start();
    OpenByMenu(file);
    ClickTab(1);
    const auto& viewer = Find<KarvelViewer>("viewerIcon");
    const auto place = [&] { return QPoint(viewer.HorizontalPosition(), viewer.VerticalPosition()); };
    Focus("viewerIcon");
    Press(Qt::Key_Right);
    Press(Qt::Key_Down);
    EXPECT_EQ(place(), QPoint(1, 1));
    Press(Qt::Key_Right, Qt::ControlModifier);
    Press(Qt::Key_Down, Qt::ControlModifier);
    EXPECT_EQ(place(), QPoint(151, 131));
    for (const char* const bar : {"hscrollIcon", "vscrollIcon"}) {
        Find<QScrollBar>(bar).setFocusPolicy(Qt::StrongFocus);
        Focus(bar);
        Press(Qt::Key_Left);
        Press(Qt::Key_Up);
    }
    EXPECT_EQ(place(), QPoint(149, 129));
    EXPECT_EQ(Position(), QPoint(0, 0)) << "The map stays where it is.";
    ClickTab(0);
    Focus("viewerMap");
    Press(Qt::Key_Right);
    EXPECT_EQ(Position(), QPoint(1, 0));
    EXPECT_EQ(place(), QPoint(149, 129));
}

TEST_F(Keys, OnTheMenuBarMoveNoMap) {
    StartWithMap({300, 300});
    Window().menuBar()->setFocus();
    QTest::keyClick(Window().menuBar(), Qt::Key_Right);
    EXPECT_EQ(Position(), QPoint(0, 0));
    QTest::keyClick(Window().menuBar(), Qt::Key_Escape);
}

TEST_F(Keys, OtherKeysMoveNothing) {
    StartWithMap({300, 300});
    for (const Qt::Key key : {Qt::Key_A, Qt::Key_PageDown, Qt::Key_Home, Qt::Key_End, Qt::Key_Return})
        Press(key);
    EXPECT_EQ(Position(), QPoint(0, 0));
}

TEST_F(Keys, MoveWhatIsShown) {
    StartWithMap({300, 300});
    const auto before = Find<KarvelViewer>("viewerMap").Image();
    Press(Qt::Key_Right, Qt::ControlModifier);
    EXPECT_NE(Find<KarvelViewer>("viewerMap").Image(), before);
    EXPECT_FALSE(State().modified);
}

TEST_F(Keys, AStepBeyond16BitsMovesNothing) {
    Start();
    OpenByMenu(MakeLibrary("a.Atlavex", {{327'690, 2}}));
    Focus("viewerMap");
    PressShortcut(Qt::Key_0);
    ASSERT_GT(Horizontal().maximum(), 0);
    Press(Qt::Key_Right, Qt::ControlModifier);
    EXPECT_EQ(Position(), QPoint(0, 0));
    Press(Qt::Key_Right);
    EXPECT_EQ(Position(), QPoint(1, 0));
}
