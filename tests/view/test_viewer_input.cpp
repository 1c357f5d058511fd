// What the viewer reports of mouse, wheel and keys.

#include "tests/view/ViewWindow.h"

namespace {

class ViewerInput : public testing::Test {
protected:
    KarvelViewer& Viewer() { return window_.viewer; }
    void Press(const QPoint& at, Qt::MouseButton button = Qt::LeftButton) {
        window_.SendMouse(QEvent::MouseButtonPress, at, button, button);
    }
    void Move(const QPoint& at, Qt::MouseButtons buttons = Qt::NoButton) {
        window_.SendMouse(QEvent::MouseMove, at, Qt::NoButton, buttons);
    }
    void Release(const QPoint& at, Qt::MouseButton button = Qt::LeftButton) {
        window_.SendMouse(QEvent::MouseButtonRelease, at, button);
    }
    void Wheel(const QPoint& angle, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        window_.SendWheel({20, 10}, angle, modifiers);
    }
    static QPoint PointOf(QSignalSpy& spy, int argument = 0) {
        return spy.isEmpty() ? QPoint(-1, -1) : spy.takeFirst().at(argument).toPoint();
    }

    ViewWindow window_;
    QSignalSpy clicked_{&window_.viewer, &KarvelViewer::Clicked};
    QSignalSpy moved_{&window_.viewer, &KarvelViewer::MouseMoved};
    QSignalSpy panned_{&window_.viewer, &KarvelViewer::Panned};
    QSignalSpy turned_{&window_.viewer, &KarvelViewer::Turned};
    QSignalSpy zoomed_{&window_.viewer, &KarvelViewer::ZoomTurned};
    QSignalSpy left_{&window_.viewer, &KarvelViewer::PointerLeft};
};

} // namespace

TEST_F(ViewerInput, NamesTheDevicePixelUnderThePointer) {
    for (int x = 0; x < window_.Place().width(); x += 7) {
        Move({x, x / 2});
        EXPECT_EQ(PointOf(moved_), QPoint(x, x / 2));
    }
}

TEST_F(ViewerInput, NamesTheDevicePixelOfAClickByTheToolkitsOwnDriver) {
    const double ratio = window_.Ratio();
    for (const QPoint& at : {QPoint(0, 1), QPoint(1, 0), QPoint(1, 1), QPoint(33, 44), QPoint(160, 120)}) {
        QTest::mouseClick(&Viewer(), Qt::LeftButton, Qt::NoModifier, at);
        const QPointF inWindow = QPointF(at + Viewer().pos()) * ratio;
        const QPoint wanted(static_cast<int>(inWindow.x()), static_cast<int>(inWindow.y()));
        // At 1.5 the first position lies on a device pixel that the neighbour paints.
        const QPoint first = window_.Place().topLeft();
        EXPECT_EQ(PointOf(clicked_),
                  QPoint(std::max(wanted.x(), first.x()), std::max(wanted.y(), first.y())) - first);
    }
}

TEST_F(ViewerInput, KnowsWhereThePointerIsUntilItLeaves) {
    Move({7, 9});
    EXPECT_EQ(Viewer().PointerPosition(), QPoint(7, 9));
    Move({-3, 9}, Qt::MiddleButton);
    EXPECT_EQ(Viewer().PointerPosition(), std::nullopt);
    Wheel({0, 120});
    EXPECT_EQ(Viewer().PointerPosition(), QPoint(20, 10));
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&Viewer(), &leave);
    EXPECT_EQ(Viewer().PointerPosition(), std::nullopt);
    const QPointF at(30, 40);
    QEnterEvent enter(at, at, at);
    QApplication::sendEvent(&Viewer(), &enter);
    EXPECT_NE(Viewer().PointerPosition(), std::nullopt);
}

TEST_F(ViewerInput, TellsButtonsAndModifiersOfAMove) {
    window_.SendMouse(QEvent::MouseMove, {5, 6}, Qt::NoButton, Qt::RightButton, Qt::ShiftModifier);
    ASSERT_EQ(moved_.count(), 1);
    EXPECT_EQ(moved_[0][0].toPoint(), QPoint(5, 6));
    EXPECT_EQ(moved_[0][1].value<Qt::MouseButtons>(), Qt::RightButton);
    EXPECT_EQ(moved_[0][2].value<Qt::KeyboardModifiers>(), Qt::ShiftModifier);
    EXPECT_EQ(clicked_.count(), 0);
}

TEST_F(ViewerInput, ClicksWhereTheButtonIsReleased) {
    Press({10, 10});
    EXPECT_EQ(clicked_.count(), 0);
    Move({13, 12}, Qt::LeftButton);
    Release({14, 12});
    EXPECT_EQ(PointOf(clicked_), QPoint(14, 12));
    EXPECT_EQ(panned_.count(), 0);
}

TEST_F(ViewerInput, DoesNotClickWhenReleasedOutside) {
    const QSize size = window_.Place().size();
    for (const QPoint& outside :
         {QPoint(-1, 5), QPoint(5, -1), QPoint(size.width(), 5), QPoint(5, size.height())}) {
        Press({10, 10});
        Release(outside);
    }
    EXPECT_EQ(clicked_.count(), 0);
    Press({10, 10});
    Release({size.width() - 1, size.height() - 1});
    EXPECT_EQ(clicked_.count(), 1);
}

TEST_F(ViewerInput, DoesNotClickWithoutAPressInside) {
    Release({10, 10});
    EXPECT_EQ(clicked_.count(), 0);
}

TEST_F(ViewerInput, DoesNotClickWithOtherButtons) {
    for (const Qt::MouseButton button : {Qt::RightButton, Qt::MiddleButton, Qt::BackButton}) {
        Press({10, 10}, button);
        Release({10, 10}, button);
    }
    EXPECT_EQ(clicked_.count(), 0);
}

TEST_F(ViewerInput, TakesADoubleClickForTwoClicks) {
    Press({10, 10});
    Release({10, 10});
    window_.SendMouse(QEvent::MouseButtonDblClick, {11, 10}, Qt::LeftButton, Qt::LeftButton);
    Release({11, 10});
    EXPECT_EQ(clicked_.count(), 2);
}

TEST_F(ViewerInput, PansWithTheMiddleButton) {
    Press({50, 50}, Qt::MiddleButton);
    EXPECT_EQ(Viewer().cursor().shape(), Qt::ClosedHandCursor);
    Move({57, 45}, Qt::MiddleButton);
    EXPECT_EQ(PointOf(panned_), QPoint(7, -5));
    Move({57, 45}, Qt::MiddleButton);
    EXPECT_EQ(panned_.count(), 0);
    Move({-30, 46}, Qt::MiddleButton);
    EXPECT_EQ(PointOf(panned_), QPoint(-87, 1));
    Release({-30, 46}, Qt::MiddleButton);
    EXPECT_EQ(Viewer().cursor().shape(), Qt::ArrowCursor);
    Move({0, 0});
    EXPECT_EQ(panned_.count(), 0);
}

TEST_F(ViewerInput, PansWithSpaceAndTheLeftButtonAndDoesNotClick) {
    QTest::keyPress(&Viewer(), Qt::Key_Space);
    EXPECT_EQ(Viewer().cursor().shape(), Qt::OpenHandCursor);
    Press({50, 50});
    EXPECT_EQ(Viewer().cursor().shape(), Qt::ClosedHandCursor);
    Move({51, 52}, Qt::LeftButton);
    EXPECT_EQ(PointOf(panned_), QPoint(1, 2));
    QTest::keyRelease(&Viewer(), Qt::Key_Space);
    Move({52, 52}, Qt::LeftButton);
    EXPECT_EQ(PointOf(panned_), QPoint(1, 0)) << "A drag goes on until its button is released.";
    Release({52, 52});
    EXPECT_EQ(clicked_.count(), 0);
    EXPECT_EQ(Viewer().cursor().shape(), Qt::ArrowCursor);
    Press({50, 50});
    Release({50, 50});
    EXPECT_EQ(clicked_.count(), 1);
}

TEST_F(ViewerInput, PressingTheMiddleButtonDuringAClickMakesItNone) {
    Press({50, 50});
    Press({50, 50}, Qt::MiddleButton);
    Release({50, 50}, Qt::MiddleButton);
    Release({50, 50});
    EXPECT_EQ(clicked_.count(), 0);
}

TEST_F(ViewerInput, AButtonPressedDuringADragDoesNothing) {
    Press({50, 50}, Qt::MiddleButton);
    Press({50, 50});
    Release({50, 50});
    EXPECT_EQ(clicked_.count(), 0);
    Move({51, 50}, Qt::MiddleButton);
    EXPECT_EQ(panned_.count(), 1);
}

TEST_F(ViewerInput, StopsPanningWhenTheReleaseWentElsewhere) {
    Press({50, 50}, Qt::MiddleButton);
    Move({60, 50});
    EXPECT_EQ(panned_.count(), 0);
    EXPECT_EQ(Viewer().cursor().shape(), Qt::ArrowCursor);
    EXPECT_EQ(moved_.count(), 1);
}

TEST_F(ViewerInput, ForgetsButtonsAndSpaceWhenDisabledHiddenOrLeft) {
    const auto start = [this] {
        QTest::keyPress(&Viewer(), Qt::Key_Space);
        Press({50, 50});
        ASSERT_EQ(Viewer().cursor().shape(), Qt::ClosedHandCursor);
    };
    start();
    window_.window.setEnabled(false);
    EXPECT_EQ(Viewer().cursor().shape(), Qt::ArrowCursor);
    window_.window.setEnabled(true);
    Viewer().setFocus();
    start();
    Viewer().hide();
    EXPECT_EQ(Viewer().cursor().shape(), Qt::ArrowCursor);
    Viewer().show();
    Viewer().setFocus();
    QTest::keyPress(&Viewer(), Qt::Key_Space);
    window_.horizontal.setFocusPolicy(Qt::StrongFocus);
    window_.horizontal.setFocus();
    EXPECT_EQ(Viewer().cursor().shape(), Qt::ArrowCursor);
}

TEST_F(ViewerInput, PassesOtherKeysOn) {
    QKeyEvent key(QEvent::KeyPress, Qt::Key_Left, Qt::NoModifier);
    key.accept();
    QApplication::sendEvent(&Viewer(), &key);
    EXPECT_FALSE(key.isAccepted());
    QKeyEvent space(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier);
    QApplication::sendEvent(&Viewer(), &space);
    EXPECT_TRUE(space.isAccepted());
}

TEST_F(ViewerInput, HoldsTheHandWhileSpaceRepeats) {
    QTest::keyPress(&Viewer(), Qt::Key_Space);
    QKeyEvent release(QEvent::KeyRelease, Qt::Key_Space, Qt::NoModifier, " ", true);
    QApplication::sendEvent(&Viewer(), &release);
    EXPECT_EQ(Viewer().cursor().shape(), Qt::OpenHandCursor);
    QTest::keyRelease(&Viewer(), Qt::Key_Space);
    EXPECT_EQ(Viewer().cursor().shape(), Qt::ArrowCursor);
}

TEST_F(ViewerInput, TurnsOfTheWheelMoveThePictureThreeLines) {
    const int notch = static_cast<int>(QApplication::wheelScrollLines() * 20 * window_.Ratio());
    Wheel({0, 120});
    EXPECT_EQ(PointOf(turned_), QPoint(0, notch));
    Wheel({0, -240});
    EXPECT_EQ(PointOf(turned_), QPoint(0, -2 * notch));
    Wheel({-120, 0});
    EXPECT_EQ(PointOf(turned_), QPoint(-notch, 0));
    EXPECT_EQ(zoomed_.count(), 0);
}

TEST_F(ViewerInput, ShiftOrAltTurnsTheAxis) {
    const int notch = static_cast<int>(QApplication::wheelScrollLines() * 20 * window_.Ratio());
    for (const Qt::KeyboardModifier modifier : {Qt::ShiftModifier, Qt::AltModifier}) {
        Wheel({0, 120}, modifier);
        EXPECT_EQ(PointOf(turned_), QPoint(notch, 0));
        // Where the desktop has turned the axis already.
        Wheel({120, 0}, modifier);
        EXPECT_EQ(PointOf(turned_), QPoint(notch, 0));
    }
}

TEST_F(ViewerInput, SmallTurnsOfAFineWheelAddUp) {
    QPoint sum;
    for (int i = 0; i < 120; ++i)
        Wheel({0, 1});
    while (!turned_.isEmpty())
        sum += PointOf(turned_);
    EXPECT_EQ(sum, QPoint(0, static_cast<int>(QApplication::wheelScrollLines() * 20 * window_.Ratio())));
}

TEST_F(ViewerInput, ATouchpadMovesThePictureByItsOwnPixels) {
    QWheelEvent event(QPointF(20, 20), Viewer().mapToGlobal(QPointF(20, 20)), QPoint(4, -6), QPoint(8, -12),
                      Qt::NoButton, Qt::NoModifier, Qt::ScrollUpdate, false);
    QApplication::sendEvent(&Viewer(), &event);
    EXPECT_EQ(PointOf(turned_),
              QPoint(static_cast<int>(4 * window_.Ratio()), static_cast<int>(-6 * window_.Ratio())));
}

TEST_F(ViewerInput, CtrlAndTheWheelZoom) {
    Wheel({0, 120}, Qt::ControlModifier);
    ASSERT_EQ(zoomed_.count(), 1);
    EXPECT_EQ(zoomed_[0][0].toInt(), 1);
    EXPECT_EQ(PointOf(zoomed_, 1), QPoint(20, 10));
    Wheel({0, -360}, Qt::ControlModifier);
    ASSERT_EQ(zoomed_.count(), 1);
    EXPECT_EQ(zoomed_[0][0].toInt(), -3);
    EXPECT_EQ(turned_.count(), 0);
}

TEST_F(ViewerInput, CtrlAndAFineWheelZoomByWholeSteps) {
    for (int i = 0; i < 7; ++i)
        Wheel({0, 16}, Qt::ControlModifier);
    EXPECT_EQ(zoomed_.count(), 0);
    Wheel({0, 16}, Qt::ControlModifier);
    ASSERT_EQ(zoomed_.count(), 1);
    EXPECT_EQ(zoomed_.takeFirst()[0].toInt(), 1);
    // Turning back begins anew: one whole step, no more.
    for (int i = 0; i < 6; ++i)
        Wheel({0, 16}, Qt::ControlModifier);
    Wheel({0, -120}, Qt::ControlModifier);
    ASSERT_EQ(zoomed_.count(), 1);
    EXPECT_EQ(zoomed_[0][0].toInt(), -1);
}

TEST_F(ViewerInput, SaysWhenThePointerLeaves) {
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&Viewer(), &leave);
    EXPECT_EQ(left_.count(), 1);
}
