#include "component/Bitmap.h"
#include "tests/app/ShellFixture.h"
#include "tests/support/desktop/ExpectedTexts.h"

#include <QScrollBar>
#include <QWheelEvent>

#include <numbers>

namespace {

/// The zoom slider, its label, and the other ways to zoom.
class Zooming : public ShellTest {
protected:
    QSlider& Slider() { return Find<QSlider>("sldZoom"); }

    void StartWithMap(const QSize& size, double zoom = 1.0) {
        const std::string file = MakeLibrary("a.Atlavex", {size, {20, 20}}, 1);
        {
            const auto library = Open(file);
            MapAt(*library, 1)->SetZoom(zoom);
            library->SaveToFile(file, {});
        }
        Start();
        OpenByMenu(file);
    }
    /// Moves the slider by its keys.
    void MoveTo(int position) {
        while (Slider().value() != position) {
            const int before = Slider().value();
            QTest::keyClick(&Slider(), before < position ? Qt::Key_Right : Qt::Key_Left);
            ASSERT_NE(Slider().value(), before);
        }
    }
    void Turn(int steps, const QPoint& at = {30, 20}) {
        auto& viewer = Find<KarvelViewer>("viewerMap");
        QWheelEvent event(at, viewer.mapToGlobal(QPointF(at)), QPoint(), QPoint(0, 120 * steps), Qt::NoButton,
                          Qt::ControlModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&viewer, &event);
    }
    double Zoom() const { return State().currentMap->Zoom(); }
    void ExpectAt(int position, const char* percentage) {
        EXPECT_EQ(Slider().value(), position);
        EXPECT_EQ(TextOf("lbZoomPercentage"), percentage);
        EXPECT_DOUBLE_EQ(Zoom(), std::exp(position / 10.0));
    }
};

} // namespace

TEST_F(Zooming, OneIsPositionZeroAndAHundredPercent) {
    StartWithMap({40, 30});
    ExpectAt(0, "100%");
    EXPECT_EQ(Slider().minimum(), -50);
    EXPECT_EQ(Slider().maximum(), 20);
}

TEST_F(Zooming, PositionTenIsEAndComesBackAsTen) {
    StartWithMap({40, 30});
    MoveTo(10);
    ExpectAt(10, "272%");
    EXPECT_DOUBLE_EQ(Zoom(), std::numbers::e);
    Pick("ddMaps", 1);
    EXPECT_EQ(Slider().value(), 0);
    EXPECT_EQ(TextOf("lbZoomPercentage"), "100%");
    Pick("ddMaps", 0);
    ExpectAt(10, "272%");
}

TEST_F(Zooming, EveryPositionIsItsPowerOfE) {
    StartWithMap({40, 30});
    MoveTo(20);
    ExpectAt(20, "739%");
    MoveTo(-7);
    ExpectAt(-7, "50%");
    MoveTo(-50);
    ExpectAt(-50, "1%");
}

TEST_F(Zooming, ChoosingAMapLeavesItsZoomAsItWasStored) {
    StartWithMap({40, 30}, 0.1234);
    EXPECT_EQ(Zoom(), 0.1234);
    EXPECT_EQ(Slider().value(), -21);
    EXPECT_EQ(TextOf("lbZoomPercentage"), "12%");
    Pick("ddMaps", 1);
    Pick("ddMaps", 0);
    EXPECT_EQ(Zoom(), 0.1234);
}

TEST_F(Zooming, IsKeptWithTheMapButLeavesNothingToSave) {
    StartWithMap({40, 30});
    MoveTo(5);
    EXPECT_FALSE(State().modified);
    Choose("mFileSaveAtlavex");
    ExpectAt(5, "165%");
    OpenByMenu(PathOf("a.Atlavex"));
    ExpectAt(5, "165%");
}

TEST_F(Zooming, ASmallMapIsShownAtItsZoomedSize) {
    StartWithMap({40, 30});
    MoveTo(10);
    const auto& image = *Find<KarvelViewer>("viewerMap").Image();
    EXPECT_EQ(image.Width(), 109); // 40 × 2.71828
    EXPECT_EQ(image.Height(), 82);
}

TEST_F(Zooming, CtrlAndTheWheelZoomAboutThePointer) {
    StartWithMap({1600, 1400});
    auto& horizontal = Find<QScrollBar>("hscrollMap");
    auto& vertical = Find<QScrollBar>("vscrollMap");
    horizontal.setValue(300);
    vertical.setValue(200);
    const QPointF before((300 + 100) / Zoom(), (200 + 50) / Zoom());
    Turn(3, {100, 50});
    ExpectAt(3, "135%");
    EXPECT_NEAR((horizontal.value() + 100) / Zoom(), before.x(), 1);
    EXPECT_NEAR((vertical.value() + 50) / Zoom(), before.y(), 1);
    Turn(-4, {100, 50});
    ExpectAt(-1, "90%");
    EXPECT_NEAR((horizontal.value() + 100) / Zoom(), before.x(), 1.5);
    EXPECT_FALSE(State().modified);
}

TEST_F(Zooming, TheWheelStopsAtTheSlidersEnds) {
    StartWithMap({40, 30});
    Turn(100);
    ExpectAt(20, "739%");
    Turn(-200);
    ExpectAt(-50, "1%");
}

TEST_F(Zooming, CtrlZeroIsActualSizeAndCtrlNineTheWholeMap) {
    StartWithMap({1600, 1400});
    PressShortcut(Qt::Key_9);
    const auto& viewer = Find<KarvelViewer>("viewerMap");
    EXPECT_LE(1600 * Zoom(), viewer.PixelWidth());
    EXPECT_LE(1400 * Zoom(), viewer.PixelHeight());
    const double larger = Zoom() * std::exp(0.1);
    EXPECT_TRUE(1600 * larger > viewer.PixelWidth() || 1400 * larger > viewer.PixelHeight());
    EXPECT_LT(Slider().value(), 0);
    PressShortcut(Qt::Key_0);
    ExpectAt(0, "100%");
}

TEST_F(Zooming, SliderAndShortcutKeepTheMiddleOfTheView) {
    StartWithMap({6000, 5000});
    const auto& viewer = Find<KarvelViewer>("viewerMap");
    auto& horizontal = Find<QScrollBar>("hscrollMap");
    auto& vertical = Find<QScrollBar>("vscrollMap");
    horizontal.setValue(2500);
    vertical.setValue(2200);
    const double x = 2500 + viewer.PixelWidth() / 2.0, y = 2200 + viewer.PixelHeight() / 2.0;
    const auto expectMiddle = [&] {
        EXPECT_NEAR(horizontal.value() + viewer.PixelWidth() / 2.0, x * Zoom(), 1);
        EXPECT_NEAR(vertical.value() + viewer.PixelHeight() / 2.0, y * Zoom(), 1);
    };
    for (const int position : {1, 8, -7, 5}) {
        Slider().setValue(position);
        expectMiddle();
    }
    PressShortcut(Qt::Key_0);
    expectMiddle();
    PressShortcut(Qt::Key_9);
    ASSERT_LT(Slider().value(), 0);
    EXPECT_EQ(horizontal.maximum() + vertical.maximum(), 0);
}

TEST_F(Zooming, AChosenMapStartsWhereItWasLastLookedAtInThisLibrary) {
    const std::string file = MakeLibrary("a.Atlavex", {{3000, 2000}, {2500, 2400}});
    Start();
    OpenByMenu(file);
    const auto place = [this] {
        return QPoint(Find<QScrollBar>("hscrollMap").value(), Find<QScrollBar>("vscrollMap").value());
    };
    Find<QScrollBar>("hscrollMap").setValue(321);
    Find<QScrollBar>("vscrollMap").setValue(123);
    Pick("ddMaps", 1);
    EXPECT_EQ(place(), QPoint(0, 0));
    Find<QScrollBar>("vscrollMap").setValue(222);
    Pick("ddMaps", 0);
    EXPECT_EQ(place(), QPoint(321, 123));
    Pick("ddMaps", 1);
    EXPECT_EQ(place(), QPoint(0, 222));
    OpenByMenu(file);
    EXPECT_EQ(place(), QPoint(0, 0));
    Pick("ddMaps", 1);
    EXPECT_EQ(place(), QPoint(0, 0)) << "Another opening begins afresh.";
}

TEST_F(Zooming, NewPutsTheSliderAtAHundredPercent) {
    StartWithMap({40, 30});
    MoveTo(7);
    Choose("mFileNewAtlavex");
    EXPECT_EQ(Slider().value(), 0);
    EXPECT_EQ(TextOf("lbZoomPercentage"), "100%");
}

TEST_F(Zooming, WithoutAMapTheShortcutsDoNothing) {
    Start();
    PressShortcut(Qt::Key_9);
    PressShortcut(Qt::Key_0);
    Turn(3);
    EXPECT_EQ(Slider().value(), 0);
    EXPECT_EQ(TextOf("lbZoomPercentage"), "100%");
}

TEST_F(Zooming, TheUpperEndLeavesEveryPixelInReach) {
    StartWithMap({100'000, 2});
    EXPECT_LT(Slider().maximum(), 20);
    EXPECT_GT(Slider().maximum(), 0);
    MoveTo(Slider().maximum());
    const auto& viewer = Find<KarvelViewer>("viewerMap");
    const auto& bar = Find<QScrollBar>("hscrollMap");
    EXPECT_LE(bar.maximum(), 32'767);
    EXPECT_GE(bar.maximum() * 10.0 + viewer.PixelWidth(), 100'000 * Zoom());
    // One more would not do.
    EXPECT_GT(100'000 * Zoom() * std::exp(0.1) - viewer.PixelWidth(), 327'670);
    Pick("ddMaps", 1);
    EXPECT_EQ(Slider().maximum(), 20);
}

TEST_F(Zooming, AStoredZoomOutOfReachIsBroughtIntoIt) {
    StartWithMap({100'000, 2}, 7);
    EXPECT_EQ(Slider().value(), Slider().maximum());
    EXPECT_DOUBLE_EQ(Zoom(), std::exp(Slider().maximum() / 10.0));
    EXPECT_FALSE(State().modified);
}

TEST_F(Zooming, ACoarseBarShowsThePartTenTimesItsValue) {
    StartWithMap({50'000, 2});
    ASSERT_EQ(Slider().value(), 0);
    Find<QScrollBar>("hscrollMap").setValue(150);
    const auto wanted = [this] {
        std::shared_ptr<const AtlavexImage> image;
        const auto library = Open(PathOf("a.Atlavex"));
        const auto map = MapAt(*library, 1);
        EXPECT_TRUE(map->RenderView(1500, 0, Find<KarvelViewer>("viewerMap").PixelWidth(), 2, image));
        return image;
    }();
    const auto shown = Find<KarvelViewer>("viewerMap").Image();
    ASSERT_NE(shown->Pixels(), nullptr);
    EXPECT_EQ(shown->Pixels()->pixels, wanted->Pixels()->pixels);
}

TEST_F(Zooming, TheLastDeletedMapDisablesTheSliderAndTheNextEnablesIt) {
    const std::string file = MakeLibrary("b.Atlavex", {{20, 20}});
    Start();
    OpenByMenu(file);
    Expecting().ExpectBox(DeleteMap1, QMessageBox::Yes);
    Choose("mBitmapDelete");
    EXPECT_FALSE(Slider().isEnabled());
    OpenByMenu(file);
    EXPECT_TRUE(Slider().isEnabled());
}
