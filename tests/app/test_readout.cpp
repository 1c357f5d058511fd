#include "app/ReadOut.h"
#include "tests/app/ShellFixture.h"
#include "tests/support/desktop/ExpectedTexts.h"

#include <QClipboard>
#include <QMouseEvent>
#include <QRadioButton>
#include <QScrollBar>
#include <QWheelEvent>

namespace {

constexpr QuorvantDatum::Numbers Wgs84{6378137.0, 0.00669437999014, 0, 0, 0, 0, 0, 0, 0};

/// The position under the mouse in the status line.
class ReadingOut : public ShellTest {
protected:
    /// A map of longitudes and latitudes, a tenth of a degree a pixel to the right, a twentieth downwards.
    void StartWithLonLat(const QSize& size, double lon = -4.0, double lat = 3.0) {
        const std::string file = MakeLibrary("a.Atlavex", {size}, 1);
        const auto library = Open(file);
        MapAt(*library, 1)->SetMapDatum(Wgs84);
        MapAt(*library, 1)
            ->SetScalingThreePoints({lon, lat, 0, 0}, {lon + 10, lat, 100, 0}, {lon, lat - 5, 0, 100});
        library->SaveToFile(file, {});
        Start();
        OpenByMenu(file);
    }
    /// A map of eastings and northings with a quarter of a metre a pixel.
    void StartWithGrid(const QSize& size) {
        const std::string file = MakeLibrary("a.Atlavex", {size}, 1);
        const auto library = Open(file);
        const auto map = MapAt(*library, 1);
        map->SetMapDatum(Wgs84);
        map->SetMapGrid(1, 32, {0, 9, 0.9996, 500000, 0, 0, 0});
        map->SetScalingThreePoints({500000, 6200000, 0, 0}, {500025, 6200000, 100, 0},
                                   {500000, 6199975, 0, 100});
        library->SaveToFile(file, {});
        Start();
        OpenByMenu(file);
    }
    void MoveMouse(const QPoint& position) {
        auto& viewer = Find<KarvelViewer>("viewerMap");
        QMouseEvent event(QEvent::MouseMove, position, viewer.mapToGlobal(QPointF(position)), Qt::NoButton,
                          Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(&viewer, &event);
    }
    void TurnWheel(const QPoint& position, int angle) {
        auto& viewer = Find<KarvelViewer>("viewerMap");
        QWheelEvent event(position, viewer.mapToGlobal(QPointF(position)), QPoint(), QPoint(0, angle),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&viewer, &event);
    }
    std::string At(int x, int y) {
        MoveMouse({x, y});
        return TextOf("lStatus");
    }
};

} // namespace

TEST_F(ReadingOut, LongitudeAndLatitude) {
    StartWithLonLat({200, 200});
    EXPECT_EQ(TextOf("lStatus"), ScaledStatus);
    EXPECT_EQ(At(0, 0), "Longitude: 4.0000000 W Latitude: 3.0000000 N");
    EXPECT_EQ(At(13, 0), "Longitude: 2.7000000 W Latitude: 3.0000000 N");
    EXPECT_EQ(At(100, 80), "Longitude: 6.0000000 E Latitude: 1.0000000 S");
}

TEST_F(ReadingOut, EastingAndNorthingWithoutNeedlessZeros) {
    StartWithGrid({200, 200});
    EXPECT_EQ(At(0, 0), "(meters) Easting: 500000 Northing: 6200000");
    EXPECT_EQ(At(1, 2), "(meters) Easting: 500000.25 Northing: 6199999.5");
    EXPECT_EQ(At(100, 4), "(meters) Easting: 500025 Northing: 6199999");
}

TEST_F(ReadingOut, InRadiansWhenPreferred) {
    StartWithLonLat({200, 200});
    Expecting().Expect(QStringLiteral("frmPreferences"), [](QWidget& window) {
        auto& radians = Control<QRadioButton>(window, "rbRadians");
        QTest::mouseClick(&radians, Qt::LeftButton, {}, QPoint(8, radians.height() / 2));
        Click(window, "btnOK");
    });
    Choose("mFilePreferences");
    EXPECT_EQ(At(100, 80), "Longitude: 0.104719755 E Latitude: 0.017453293 S");
}

TEST_F(ReadingOut, PreferencesThatWereCancelledChangeNothing) {
    StartWithLonLat({200, 200});
    Expecting().Expect(QStringLiteral("frmPreferences"), [](QWidget& window) {
        auto& radians = Control<QRadioButton>(window, "rbRadians");
        QTest::mouseClick(&radians, Qt::LeftButton, {}, QPoint(8, radians.height() / 2));
        Click(window, "btnCancel");
    });
    Choose("mFilePreferences");
    EXPECT_EQ(At(100, 80), "Longitude: 6.0000000 E Latitude: 1.0000000 S");
}

TEST_F(ReadingOut, IsOfThePixelUnderTheMouseAtEveryZoomAndScroll) {
    StartWithLonLat({1500, 1200}, -70, 55);
    auto& horizontal = Find<QScrollBar>("hscrollMap");
    auto& vertical = Find<QScrollBar>("vscrollMap");
    for (const int position : {-10, -3, 0, 7, 20}) {
        Find<QSlider>("sldZoom").setValue(position);
        for (const double part : {0.0, 0.37, 1.0}) {
            horizontal.setValue(static_cast<int>(part * horizontal.maximum()));
            vertical.setValue(static_cast<int>((1 - part) * vertical.maximum()));
            const QPoint mouse(123, 77);
            const double zoom = std::exp(position / 10.0);
            const double x = std::nearbyint((mouse.x() + horizontal.value()) / zoom);
            const double y = std::nearbyint((mouse.y() + vertical.value()) / zoom);
            const double lon = -70 + x / 10;
            const double lat = 55 - y / 20;
            const QString wanted =
                QStringLiteral("Longitude: %1 %2 Latitude: %3 %4")
                    .arg(QString::number(std::abs(lon), 'f', 7), QLatin1String(lon < 0 ? "W" : "E"),
                         QString::number(std::abs(lat), 'f', 7), QLatin1String(lat < 0 ? "S" : "N"));
            EXPECT_EQ(At(mouse.x(), mouse.y()), wanted.toStdString()) << position << ", " << part;
        }
    }
}

TEST_F(ReadingOut, AClickReadsOutToo) {
    StartWithGrid({200, 200});
    QTest::mouseClick(&Find<QWidget>("viewerMap"), Qt::LeftButton, {}, QPoint(4, 8));
    EXPECT_EQ(TextOf("lStatus"), "(meters) Easting: 500001 Northing: 6199998");
    EXPECT_FALSE(State().modified);
}

TEST_F(ReadingOut, TheLastPixelIsReadOutUpToTheMapsEdge) {
    StartWithLonLat({20, 10});
    Find<QSlider>("sldZoom").setValue(15); // 89.6 × 44.8 on the screen
    const std::string last = "Longitude: 2.1000000 W Latitude: 2.5500000 N";
    EXPECT_EQ(At(85, 40), last);
    EXPECT_EQ(At(89, 44), last) << "Rounded it would be one pixel too many each way.";
}

TEST_F(ReadingOut, BesideTheMapNothingIsReadOut) {
    StartWithGrid({200, 100});
    const std::string untouched = TextOf("lStatus");
    for (const QPoint& beside : {QPoint(200, 50), QPoint(50, 100), QPoint(300, 200)}) {
        EXPECT_EQ(At(beside.x(), beside.y()), untouched);
        QTest::mouseClick(&Find<QWidget>("viewerMap"), Qt::LeftButton, {}, beside);
        EXPECT_EQ(TextOf("lStatus"), untouched);
    }
    EXPECT_EQ(At(199, 99), "(meters) Easting: 500049.75 Northing: 6199975.25");
}

TEST_F(ReadingOut, AnUnscaledMapKeepsItsText) {
    Start();
    OpenByMenu(MakeMixedLibrary("a.Atlavex", {false}));
    EXPECT_EQ(At(5, 5), NotScaledStatus);
}

TEST_F(ReadingOut, WithoutAMapAMoveDoesNothing) {
    Start();
    EXPECT_EQ(At(5, 5), NotScaledStatus);
}

TEST_F(ReadingOut, WithoutAMapAClickStartsAddingOne) {
    Start();
    ExpectFileDialog(QStringLiteral("Open new bitmap"), std::nullopt);
    QTest::mouseClick(&Find<QWidget>("viewerMap"), Qt::LeftButton, {}, QPoint(50, 50));
}

TEST_F(ReadingOut, OnAnUnscaledMapAClickStartsTheWizard) {
    Start();
    OpenByMenu(MakeMixedLibrary("a.Atlavex", {false}));
    ExpectWizardGivenUp();
    QTest::mouseClick(&Find<QWidget>("viewerMap"), Qt::LeftButton, {}, QPoint(5, 5));
    EXPECT_EQ(TextOf("lHeader"), "");
}

TEST_F(ReadingOut, BesideAnUnscaledMapAClickStartsNoWizard) {
    Start();
    OpenByMenu(MakeMixedLibrary("a.Atlavex", {false})); // of 50 × 40 pixels
    for (const QPoint& beside : {QPoint(50, 5), QPoint(5, 40)})
        QTest::mouseClick(&Find<QWidget>("viewerMap"), Qt::LeftButton, {}, beside);
    EXPECT_EQ(TextOf("lStatus"), NotScaledStatus);
}

TEST_F(ReadingOut, IsCopied) {
    StartWithGrid({200, 200});
    MoveMouse({1, 2});
    PressShortcut(Qt::Key_C);
    EXPECT_EQ(QApplication::clipboard()->text(),
              QStringLiteral("(meters) Easting: 500000.25 Northing: 6199999.5"));
}

TEST_F(ReadingOut, FollowsEveryChangeOfTheViewUnderAStillPointer) {
    StartWithGrid({2000, 1600});
    EXPECT_EQ(At(4, 8), "(meters) Easting: 500001 Northing: 6199998");
    Find<QScrollBar>("hscrollMap").setValue(100);
    EXPECT_EQ(TextOf("lStatus"), "(meters) Easting: 500026 Northing: 6199998");
    Focus("viewerMap");
    QTest::keyClick(&Find<QWidget>("viewerMap"), Qt::Key_Down, Qt::ControlModifier);
    EXPECT_EQ(TextOf("lStatus"), "(meters) Easting: 500026 Northing: 6199958");
    PressShortcut(Qt::Key_C);
    EXPECT_EQ(QApplication::clipboard()->text(),
              QStringLiteral("(meters) Easting: 500026 Northing: 6199958"));
    TurnWheel({4, 8}, -120);
    const int top = Find<QScrollBar>("vscrollMap").value();
    ASSERT_GT(top, 160);
    EXPECT_EQ(TextOf("lStatus"), GridReadOut(500026, 6200000 - (top + 8) / 4.0).toStdString());
    PressShortcut(Qt::Key_9);
    const double zoom = State().currentMap->Zoom();
    EXPECT_EQ(TextOf("lStatus"),
              GridReadOut(500000 + std::nearbyint(4 / zoom) / 4, 6200000 - std::nearbyint(8 / zoom) / 4)
                  .toStdString());
}

TEST_F(ReadingOut, GivesWayToTheScalingWhereThePointerShowsNoMapAnyMore) {
    StartWithGrid({700, 400});
    const std::string scaled = ScaledStatus;
    At(300, 200);
    Find<QSlider>("sldZoom").setValue(-10); // 257.5 × 147.2 on the screen
    EXPECT_EQ(TextOf("lStatus"), scaled);
    Find<QSlider>("sldZoom").setValue(0);
    EXPECT_EQ(TextOf("lStatus"), scaled) << "What was not in the line does not come back by itself.";
    At(3, 2);
    EXPECT_NE(TextOf("lStatus"), scaled);
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&Find<QWidget>("viewerMap"), &leave);
    EXPECT_NE(TextOf("lStatus"), scaled) << "It stays for as long as the view does.";
    Find<QSlider>("sldZoom").setValue(-1);
    EXPECT_EQ(TextOf("lStatus"), scaled);
}

TEST_F(ReadingOut, ComesNotBackByItselfOverWhatWasSaidSince) {
    StartWithGrid({2000, 1600});
    At(4, 8);
    Pick("ddMaps", 0);
    EXPECT_EQ(TextOf("lStatus"), ScaledStatus);
    Find<QScrollBar>("hscrollMap").setValue(100);
    EXPECT_EQ(TextOf("lStatus"), ScaledStatus);
}

TEST_F(ReadingOut, GoesWithTheMapThatTheSaveQuestionTakesAway) {
    StartWithGrid({200, 100});
    Edit();
    At(4, 8);
    ExpectSaveQuestion(QMessageBox::Cancel);
    Choose("mFileNewAtlavex");
    EXPECT_EQ(TextOf("lStatus"), ScaledStatus);
}

TEST_F(ReadingOut, BeyondTheCoordinatesIsQuiet) {
    StartWithLonLat({2000, 200}, 170, 3);
    EXPECT_EQ(At(0, 0), "Longitude: 170.0000000 E Latitude: 3.0000000 N");
    auto& viewer = Find<KarvelViewer>("viewerMap");
    for (const int scrolled : {0, 100}) {
        Find<QScrollBar>("hscrollMap").setValue(scrolled);
        const std::string before = TextOf("lStatus");
        const auto image = viewer.Image();
        Q_EMIT viewer.MouseMoved(QPoint(std::numeric_limits<int>::max(), 0), Qt::NoButton, Qt::NoModifier);
        Q_EMIT viewer.Clicked(QPoint(std::numeric_limits<int>::max(), 0));
        EXPECT_EQ(TextOf("lStatus"), before);
        EXPECT_EQ(viewer.Image(), image);
        EXPECT_EQ(Find<QScrollBar>("hscrollMap").value(), scrolled);
    }
}

TEST_F(ReadingOut, WhileTheWizardRunsAMoveReadsNothingOut) {
    StartWithGrid({200, 200});
    Expecting().Expect(QStringLiteral("frmSelectDatumGrid"), [](QWidget& window) { Click(window, "bNext"); });
    Expecting().Expect(QStringLiteral("frmProjection"), [](QWidget& window) {
        auto& linear = Control<QRadioButton>(window, "rbCartesian");
        QTest::mouseClick(&linear, Qt::LeftButton, {}, QPoint(8, linear.height() / 2));
        Click(window, "bNext");
    });
    Choose("mBitmapScalingWizard");
    EXPECT_EQ(TextOf("lHeader"), PointPrompts[0]);
    EXPECT_EQ(At(4, 8), ScaledStatus);
    // Choosing another map's entry, or New, gives it up.
    Choose("mFileNewAtlavex");
    EXPECT_EQ(TextOf("lHeader"), "");
    EXPECT_EQ(TextOf("lStatus"), NotScaledStatus);
}
