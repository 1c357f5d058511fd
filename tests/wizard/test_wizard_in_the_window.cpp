#include "app/frmMain.h"
#include "component/AtlavexLibrary.h"
#include "tests/support/TempFolder.h"
#include "tests/support/desktop/Controls.h"
#include "tests/support/desktop/ExpectedTexts.h"
#include "tests/support/desktop/ModalScript.h"
#include "tests/support/desktop/SilentBus.h"
#include "view/KarvelViewer.h"

#include <QAccessible>
#include <QAction>
#include <QImage>
#include <QLabel>
#include <QScreen>
#include <QTimer>

#include <cmath>

namespace {

constexpr int SheetWidth = 1200;
constexpr int SheetHeight = 900;

/// The editor with a library of one map that is not scaled.
class WizardInTheWindow : public ::testing::Test {
protected:
    WizardInTheWindow() {
        QImage image(SheetWidth, SheetHeight, QImage::Format_RGB32);
        image.fill(Qt::white);
        image.save(QString::fromStdString((folder / "sheet.png").string()));
        const auto library = CreateAtlavexLibrary();
        library->AddMapFromImageFile((folder / "sheet.png").string(), "sheet", 256, 256);
        library->SaveToFile((folder / "a.Atlavex").string(), "");
        window.Form_Load(QString::fromStdString((folder / "a.Atlavex").string()));
        window.resize(900, 700);
        window.show();
        window.activateWindow();
        QApplication::processEvents();
    }

    KarvelViewer& Viewer() { return Control<KarvelViewer>(window, "viewerMap"); }
    std::string Header() { return Control<QLabel>(window, "lHeader").text().toStdString(); }
    std::string Status() { return Control<QLabel>(window, "lStatus").text().toStdString(); }
    void ClickMap(const QPoint& place) {
        QTest::mouseClick(&Viewer(), Qt::LeftButton, {}, place);
        QApplication::processEvents();
    }

    /// A key as it comes from the window system, to the control that has the focus.
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(window.windowHandle(), key, modifiers);
    }

    void FocusMap() {
        window.activateWindow();
        QApplication::processEvents();
        Viewer().setFocus();
    }

    /// The dialogs of steps 1 and 2.
    void ExpectSteps(const char* projection) {
        script.Expect(QStringLiteral("frmSelectDatumGrid"), [](QWidget& shown) {
            Pick(shown, "ddCountry", QStringLiteral("International"));
            Click(shown, "bNext");
        });
        script.Expect(QStringLiteral("frmProjection"), [projection](QWidget& shown) {
            Click(shown, projection);
            Click(shown, "bNext");
        });
    }

    void ExpectPoint(double longitude, double latitude) {
        script.Expect(QStringLiteral("frmCoordinate"), [=](QWidget& shown) {
            Type(shown, "txtLonDecDeg", QString::number(longitude, 'f', 7));
            Type(shown, "txtLatDecDeg", QString::number(latitude, 'f', 7));
            Click(shown, "bNext");
        });
    }

    std::vector<ViewerMarkStyle> MarkStyles() {
        std::vector<ViewerMarkStyle> styles;
        for (const ViewerMark& mark : Viewer().Marks())
            styles.push_back(mark.style);
        return styles;
    }

    TempFolder folder;
    ModalScript script;
    frmMain window;
};

} // namespace

TEST_F(WizardInTheWindow, ScalesTheMapFromThreeClicks) {
    EXPECT_EQ(Status(), NotScaledStatus);
    ExpectSteps("rbCartesian");
    ClickMap({30, 40});
    EXPECT_EQ(Header(), PointPrompts[0]);
    ExpectPoint(10, 50);
    ClickMap({100, 100});
    EXPECT_EQ(Header(), PointPrompts[1]);
    EXPECT_THAT(MarkStyles(), ::testing::ElementsAre(ViewerMarkStyle::ReferencePoint));
    EXPECT_EQ(Viewer().Marks().front().position, QPoint(100, 100));
    ExpectPoint(11, 50);
    ClickMap({200, 100});
    EXPECT_EQ(Header(), PointPrompts[2]);
    EXPECT_FALSE(window.State().modified);
    ExpectPoint(10, 49);
    script.ExpectBox(ScalingCompleted);
    ClickMap({100, 200});
    EXPECT_EQ(Header(), "");
    EXPECT_EQ(Status(), ScaledStatus);
    EXPECT_TRUE(window.State().mapScaled);
    EXPECT_TRUE(window.State().modified);
    EXPECT_TRUE(Viewer().Marks().empty());
    const WorldPosition world = window.State().currentMap->PixelToWorld({150, 150});
    EXPECT_NEAR(world.x, 10.5, 1e-9);
    EXPECT_NEAR(world.y, 49.5, 1e-9);
}

TEST_F(WizardInTheWindow, KeepsMarksOnTheirPixelsWhenTheMapIsScrolled) {
    ExpectSteps("rbCartesian");
    ClickMap({30, 40});
    ExpectPoint(10, 50);
    ClickMap({100, 100});
    Control<QScrollBar>(window, "hscrollMap").setValue(60);
    EXPECT_EQ(Viewer().Marks().front().position, QPoint(40, 100));
    Control<QSlider>(window, "sldZoom").setValue(-7);
    const double zoom = std::exp(-0.7);
    EXPECT_NEAR(Viewer().Marks().front().position.y(), 100 * zoom, 1);
    // The click counts the map's own pixels at every zoom.
    script.Expect(QStringLiteral("frmCoordinate"), [zoom](QWidget& shown) {
        EXPECT_NEAR(std::stod(Text(shown, "txtY")), 50 / zoom, 1);
        Click(shown, "bCancel");
    });
    script.ExpectBox(WizardCancelled);
    ClickMap({20, 50});
    EXPECT_EQ(Header(), "");
    EXPECT_EQ(Status(), NotScaledStatus);
    EXPECT_TRUE(Viewer().Marks().empty());
}

TEST_F(WizardInTheWindow, WaitsWhileTheUserPansScrollsAndZooms) {
    ExpectSteps("rbCartesian");
    ClickMap({30, 40});
    ExpectPoint(10, 50);
    ClickMap({300, 200});
    const auto mark = [this] { return Viewer().Marks().front().position; };
    const auto turn = [this](Qt::KeyboardModifiers modifiers) {
        const QPointF place(300, 200);
        QWheelEvent event(place, Viewer().mapToGlobal(place), {}, {0, -120}, Qt::NoButton, modifiers,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(&Viewer(), &event);
    };
    QTest::mousePress(&Viewer(), Qt::MiddleButton, {}, {200, 150});
    QMouseEvent drag(QEvent::MouseMove, QPointF(160, 120), Viewer().mapToGlobal(QPointF(160, 120)),
                     Qt::NoButton, Qt::MiddleButton, Qt::NoModifier);
    QApplication::sendEvent(&Viewer(), &drag);
    QTest::mouseRelease(&Viewer(), Qt::MiddleButton, {}, {160, 120});
    EXPECT_EQ(mark(), QPoint(260, 170));
    turn(Qt::NoModifier);
    EXPECT_EQ(mark().x(), 260);
    EXPECT_LT(mark().y(), 170);
    const QPoint before = mark();
    turn(Qt::ControlModifier);
    EXPECT_EQ(Control<QSlider>(window, "sldZoom").value(), -1);
    // What is under the pointer stays there.
    EXPECT_NEAR(mark().x(), 300 + (before.x() - 300) * std::exp(-0.1), 1);
    EXPECT_NEAR(mark().y(), 200 + (before.y() - 200) * std::exp(-0.1), 1);
    FocusMap();
    const int scrolled = Control<QScrollBar>(window, "vscrollMap").value();
    Press(Qt::Key_Down, Qt::ControlModifier);
    EXPECT_GT(Control<QScrollBar>(window, "vscrollMap").value(), scrolled);
    EXPECT_EQ(Header(), PointPrompts[1]);
    EXPECT_EQ(Viewer().Marks().size(), 1U);
}

TEST_F(WizardInTheWindow, AClickBesideTheMapIsNone) {
    ExpectSteps("rbCartesian");
    ClickMap({30, 40});
    Control<QSlider>(window, "sldZoom").setValue(-20); // 162.4 × 121.8 on the screen
    for (const QPoint& beside : {QPoint(163, 60), QPoint(80, 122), QPoint(400, 300)}) {
        ClickMap(beside);
        EXPECT_EQ(Header(), PointPrompts[0]);
        EXPECT_TRUE(Viewer().Marks().empty());
    }
    script.Expect(QStringLiteral("frmCoordinate"), [](QWidget& shown) {
        EXPECT_EQ(Text(shown, "txtX"), "1197");
        EXPECT_EQ(Text(shown, "txtY"), "894");
        Type(shown, "txtLatDecDeg", QStringLiteral("5"));
        Click(shown, "bNext");
    });
    ClickMap({162, 121});
    EXPECT_EQ(Header(), PointPrompts[1]);
}

TEST_F(WizardInTheWindow, StartsAnewFromTheMenuWhileItRuns) {
    ExpectSteps("rbCartesian");
    ClickMap({30, 40});
    ExpectPoint(10, 50);
    ClickMap({100, 100});
    ExpectSteps("rbPolar");
    script.Expect(QStringLiteral("frmInfo"), [](QWidget& shown) { Click(shown, "bNext"); });
    window.findChild<QAction*>(QStringLiteral("mBitmapScalingWizard"))->trigger();
    EXPECT_EQ(Header(), CornerPrompts[0]);
    EXPECT_TRUE(Viewer().Marks().empty());
}

TEST_F(WizardInTheWindow, ShowsThePointsOfTheEarlierScalingFaintly) {
    window.State().currentMap->SetScalingThreePoints({10, 50, 10, 10}, {11, 50, 110, 10}, {10, 49, 10, 110});
    ExpectSteps("rbCartesian");
    window.findChild<QAction*>(QStringLiteral("mBitmapScalingWizard"))->trigger();
    EXPECT_EQ(MarkStyles(), std::vector<ViewerMarkStyle>(3, ViewerMarkStyle::FormerPoint));
    EXPECT_EQ(Viewer().Marks()[1].position, QPoint(110, 10));
}

TEST_F(WizardInTheWindow, TakesAPointFromTheKeyboardAlone) {
    ExpectSteps("rbCartesian");
    ClickMap({30, 40});
    FocusMap();
    Press(Qt::Key_Return); // there is no crosshair yet
    Press(Qt::Key_Left, Qt::AltModifier);
    ASSERT_THAT(MarkStyles(), ::testing::ElementsAre(ViewerMarkStyle::Crosshair));
    const QPoint first = Viewer().Marks().front().position;
    Press(Qt::Key_Right, Qt::AltModifier);
    Press(Qt::Key_Down, Qt::AltModifier | Qt::ShiftModifier);
    const QPoint place = Viewer().Marks().front().position;
    EXPECT_EQ(place, first + QPoint(1, 10));
    EXPECT_EQ(Viewer().ValueText(), QStringLiteral("Pixel %1, %2").arg(place.x()).arg(place.y()));
    EXPECT_EQ(Control<QScrollBar>(window, "vscrollMap").value(), 0);
    Press(Qt::Key_Down);
    EXPECT_GT(Control<QScrollBar>(window, "vscrollMap").value(), 0);
    EXPECT_EQ(Viewer().Marks().front().position.x(), place.x());
    script.Expect(QStringLiteral("frmCoordinate"), [place](QWidget& shown) {
        EXPECT_EQ(Text(shown, "txtX"), std::to_string(place.x()));
        EXPECT_EQ(Text(shown, "txtY"), std::to_string(place.y()));
        Type(shown, "txtLatDecDeg", QStringLiteral("5"));
        Click(shown, "bNext");
    });
    Press(Qt::Key_Return);
    EXPECT_EQ(Header(), PointPrompts[1]);
    EXPECT_THAT(MarkStyles(), ::testing::ElementsAre(ViewerMarkStyle::ReferencePoint));
}

TEST_F(WizardInTheWindow, AHeldKeyMovesTheCrosshairFasterAndFaster) {
    ExpectSteps("rbCartesian");
    ClickMap({30, 40});
    FocusMap();
    const auto place = [this] { return Viewer().Marks().front().position; };
    const auto hold = [this](int repetitions) {
        Press(Qt::Key_Right, Qt::AltModifier);
        for (int i = 0; i < repetitions; ++i) {
            QKeyEvent again(QEvent::KeyPress, Qt::Key_Right, Qt::AltModifier, QString(), true);
            QApplication::sendEvent(&Viewer(), &again);
        }
    };
    Press(Qt::Key_Left, Qt::AltModifier);
    const int first = place().x();
    hold(7);
    EXPECT_EQ(place().x(), first + 8) << "A short while goes pixel by pixel.";
    Press(Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(place().x(), first + 7) << "Another press begins with one pixel again.";
    hold(24);
    EXPECT_EQ(place().x(), first + 7 + 8 + 8 * 2 + 8 * 4 + 8);
}

TEST_F(WizardInTheWindow, KeepsTheCrosshairOnTheMapAndInSight) {
    ExpectSteps("rbCartesian");
    ClickMap({30, 40});
    FocusMap();
    for (int press = 0; press < 2 * SheetWidth / 10; ++press)
        Press(Qt::Key_Right, Qt::AltModifier | Qt::ShiftModifier);
    const QPoint place = Viewer().Marks().front().position;
    EXPECT_TRUE(QRect(0, 0, Viewer().PixelWidth(), Viewer().PixelHeight()).contains(place));
    EXPECT_EQ(place.x() + Control<QScrollBar>(window, "hscrollMap").value(), SheetWidth - 1);
}

TEST_F(WizardInTheWindow, ShowsItsPromptToScreenReadersAsANotice) {
    ExpectSteps("rbCartesian");
    ClickMap({30, 40});
    QAccessibleInterface* const header =
        QAccessible::queryAccessibleInterface(window.findChild<QLabel*>(QStringLiteral("lHeader")));
    ASSERT_NE(header, nullptr);
    EXPECT_EQ(header->role(), QAccessible::Notification);
    EXPECT_EQ(header->text(QAccessible::Name).toStdString(), PointPrompts[0]);
}

TEST_F(WizardInTheWindow, OpensTheCoordinateFormBesideThePixelThatWasClicked) {
    const QRect screen = window.screen()->availableGeometry();
    window.setGeometry(screen);
    QApplication::processEvents();
    for (const QPoint& part : {QPoint(5, 5), QPoint(95, 5), QPoint(5, 95), QPoint(95, 95), QPoint(20, 50),
                               QPoint(80, 50), QPoint(50, 10), QPoint(50, 90), QPoint(30, 30)}) {
        SCOPED_TRACE(std::to_string(part.x()) + ", " + std::to_string(part.y()));
        const QPoint place(Viewer().width() * part.x() / 100, Viewer().height() * part.y() / 100);
        const QPoint clicked = Viewer().mapToGlobal(place);
        ExpectSteps("rbCartesian");
        ClickMap(place);
        script.Expect(QStringLiteral("frmCoordinate"), [&](QWidget& shown) {
            const QRect form = shown.frameGeometry();
            EXPECT_TRUE(screen.contains(form))
                << form.x() << "," << form.y() << " " << form.width() << "x" << form.height() << " on "
                << screen.width() << "x" << screen.height();
            EXPECT_FALSE(form.contains(clicked));
            Click(shown, "bCancel");
        });
        script.ExpectBox(WizardCancelled);
        ClickMap(place);
    }
}

TEST_F(WizardInTheWindow, LetsTheWindowBeClosedOnceTheOtherProgramWasGivenUp) {
    QApplication::setQuitOnLastWindowClosed(false); // the other tests go on
    const SilentBus bus;
    script.Expect(QStringLiteral("frmSelectDatumGrid"), [this](QWidget& shown) {
        QTimer::singleShot(50, &shown, [this, &shown] {
            EXPECT_FALSE(window.close());
            Click(shown, "bCancel");
        });
        Click(shown, "bNext"); // of a custom grid
    });
    script.ExpectBox(WizardCancelled);
    ClickMap({30, 40});
    EXPECT_TRUE(script.IsDone());
    EXPECT_TRUE(window.close());
    EXPECT_FALSE(window.isVisible());
}
