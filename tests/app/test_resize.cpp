#include "app/modResize.h"
#include "tests/app/ShellFixture.h"

#include <QScrollBar>

namespace {

/// The limits of the window's size, and its layout.
class Sizes : public ShellTest {
protected:
    /// Closes the window and cancels, which ends the limits.
    void CancelClosing() {
        Edit();
        ExpectSaveQuestion(QMessageBox::Cancel);
        Window().close();
        ASSERT_TRUE(Window().isVisible());
    }
    void Resize(const QSize& size) {
        Window().resize(size);
        QApplication::processEvents();
    }
    /// That the controls of the page shown stand inside the window and on nobody else's place.
    void ExpectInside(const std::vector<const char*>& names) {
        std::vector<QRect> places;
        for (const char* const name : names) {
            const auto& control = Find<QWidget>(name);
            ASSERT_TRUE(control.isVisible()) << name;
            const QRect place(control.mapTo(&Window(), QPoint(0, 0)), control.size());
            EXPECT_TRUE(Window().rect().contains(place)) << name;
            EXPECT_FALSE(place.isEmpty()) << name;
            for (const QRect& other : places)
                EXPECT_FALSE(place.intersects(other)) << name;
            places.push_back(place);
        }
    }
};

const std::vector<const char*> MapPage{"lHeader", "ddMaps",  "viewerMap",        "vscrollMap", "hscrollMap",
                                       "lbZoom",  "sldZoom", "lbZoomPercentage", "lStatus"};

} // namespace

TEST_F(Sizes, AreHeldWithinTheLimits) {
    Start();
    EXPECT_EQ(Window().minimumSize(), QSize(640, 400));
    EXPECT_EQ(Window().maximumSize(), QSize(10'000, 10'000));
    Resize({100, 100});
    EXPECT_EQ(Window().size(), QSize(640, 400));
    Resize({20'000, 700});
    EXPECT_EQ(Window().size(), QSize(10'000, 700));
}

TEST_F(Sizes, TheStartingPlaceFitsTheScreensFreeArea) {
    constexpr int TitleBar = 40;
    // With a scale of 1.25 a screen of 1366 × 768 counts as 1092 × 614; panels take a part away.
    for (const QRect& area : {QRect(0, 0, 1280, 720), QRect(0, 0, 1092, 614), QRect(0, 0, 3840, 2160),
                              QRect(60, 30, 1220, 690), QRect(1920, -200, 1080, 1920)}) {
        const QRect place = StartingPlace(area);
        EXPECT_TRUE(area.contains(place.adjusted(-4, -4, 4, TitleBar))) << area.width();
        EXPECT_GE(place.width() * place.height(), area.width() * area.height() * 3 / 4);
    }
    EXPECT_EQ(StartingPlace({0, 0, 600, 300}), QRect(0, 0, 640, 400)) << "never below the smallest size";
}

TEST_F(Sizes, AreNotHeldInDiagnosticMode) {
    Start({}, true);
    Resize({400, 300});
    EXPECT_EQ(Window().size(), QSize(400, 300));
    EXPECT_EQ(Window().maximumSize(), QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX));
}

TEST_F(Sizes, TheSmallestHeldSizeShowsEverything) {
    Start();
    OpenByMenu(MakeLibrary("a.Atlavex", {{1500, 1200}}, 1));
    Resize({640, 400});
    ExpectInside(MapPage);
    EXPECT_GT(Find<QWidget>("viewerMap").width(), 500);
    EXPECT_GT(Find<QWidget>("viewerMap").height(), 150);
    ClickTab(1);
    ExpectInside({"lHeader", "ddIcons", "viewerIcon", "vscrollIcon", "hscrollIcon", "lStatus", "lbSize"});
}

TEST_F(Sizes, WithLargeLettersTheSizeTextYieldsToTheReadOut) {
    Start();
    OpenByMenu(MakeLibrary("a.Atlavex", {{1500, 1200}}));
    QFont large = Window().font();
    large.setPointSize(20);
    Window().setFont(large);
    Find<QSlider>("sldZoom").setValue(0);
    QTest::mouseClick(&Find<QWidget>("viewerMap"), Qt::LeftButton, {}, QPoint(5, 5));
    const auto& readOut = Find<QLabel>("lStatus");
    const auto& size = Find<QLabel>("lbSize");
    const auto widthOf = [](const QLabel& label) {
        return label.fontMetrics().horizontalAdvance(label.text());
    };
    ASSERT_GT(widthOf(readOut), 3 * widthOf(Find<QLabel>("lbZoom")));
    Resize({widthOf(readOut) + widthOf(size) / 2, 600});
    EXPECT_GE(readOut.width(), widthOf(readOut));
    EXPECT_LT(size.width(), widthOf(size));
    Resize({widthOf(readOut) + widthOf(size) + 100, 600});
    EXPECT_GE(readOut.width(), widthOf(readOut));
    EXPECT_GE(size.width(), widthOf(size));
    EXPECT_EQ(TextOf("lbSize"), "Bitmap size: (1500, 1200)");
}

TEST_F(Sizes, AfterACancelledCloseTheWindowMayBeSmallerAndWorks) {
    Start();
    OpenByMenu(MakeLibrary("a.Atlavex", {{1500, 1200}}, 1));
    CancelClosing();
    Resize({300, 260});
    EXPECT_EQ(Window().size(), QSize(300, 260));
    Pick("ddMaps", 0);
    ExpectInside(MapPage);
    auto& horizontal = Find<QScrollBar>("hscrollMap");
    const auto& viewer = Find<KarvelViewer>("viewerMap");
    EXPECT_EQ(horizontal.maximum(), 1500 - viewer.PixelWidth());
    Focus("viewerMap");
    QTest::keyClick(&Find<QWidget>("viewerMap"), Qt::Key_Right, Qt::ControlModifier);
    EXPECT_EQ(horizontal.value(), 150);
    EXPECT_EQ(viewer.Image()->Width(), viewer.PixelWidth());
    Resize({60, 50});
    EXPECT_EQ(Window().size(), QSize(60, 50));
    PressShortcut(Qt::Key_9);
    Resize({800, 600});
    ExpectInside(MapPage);
}

TEST_F(Sizes, TheViewFillsTheWindowAndFollowsIt) {
    Start();
    OpenByMenu(MakeLibrary("a.Atlavex", {{1500, 1200}}));
    for (const QSize& size : {QSize(900, 700), QSize(1200, 800)}) {
        Resize(size);
        const auto& viewer = Find<KarvelViewer>("viewerMap");
        EXPECT_GT(viewer.width(), size.width() - 80);
        EXPECT_EQ(Find<QScrollBar>("hscrollMap").maximum(), 1500 - viewer.PixelWidth());
        EXPECT_EQ(Find<QScrollBar>("vscrollMap").maximum(), 1200 - viewer.PixelHeight());
        EXPECT_EQ(viewer.Image()->Width(), viewer.PixelWidth());
    }
}

TEST_F(Sizes, ALongNameDoesNotWidenTheWindow) {
    const std::string file = MakeLibrary("a.Atlavex", {{20, 20}});
    {
        const auto library = Open(file);
        MapAt(*library, 1)->SetMetadata("name", std::string(1000, 'W'));
        library->SaveToFile(file, {});
    }
    Start();
    OpenByMenu(file);
    Resize({640, 400});
    EXPECT_EQ(Window().size(), QSize(640, 400));
    ExpectInside(MapPage);
}
