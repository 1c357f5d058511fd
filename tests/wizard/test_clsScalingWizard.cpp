#include "base/ComponentError.h"
#include "component/AtlavexLibrary.h"
#include "tests/support/TempFolder.h"
#include "tests/support/desktop/Controls.h"
#include "tests/support/desktop/ExpectedTexts.h"
#include "tests/support/desktop/ModalScript.h"
#include "tests/support/desktop/RecordingMap.h"
#include "wizard/clsScalingWizard.h"

#include <QImage>
#include <QLabel>

namespace {

const auto SelectForm = QStringLiteral("frmSelectDatumGrid");
const auto ProjectionForm = QStringLiteral("frmProjection");
const auto InfoForm = QStringLiteral("frmInfo");
const auto PointForm = QStringLiteral("frmCoordinate");
const auto Cancelled = WizardCancelled;

const auto CancelForm = [](QWidget& shown) { Click(shown, "bCancel"); };

class ScalingWizard : public ::testing::Test {
protected:
    /// Step 1 with a datum of a country.
    void ExpectDatum(const QString& country, const QString& datum) {
        script.Expect(SelectForm, [=](QWidget& shown) {
            Pick(shown, "ddCountry", country);
            Pick(shown, "ddDatum", datum);
            Click(shown, "bNext");
        });
    }

    /// Step 1 with a grid; the zone is typed or picked, if there is one.
    void ExpectGrid(const QString& country, const QString& grid, const QString& zone = {}) {
        script.Expect(SelectForm, [=](QWidget& shown) {
            Pick(shown, "ddCountry", country);
            Click(shown, "rdShowGrid");
            Pick(shown, "ddGrid", grid);
            if (IsShown(shown, "txtZone"))
                Type(shown, "txtZone", zone);
            else if (!zone.isEmpty())
                Pick(shown, "ddZone", zone);
            Click(shown, "bNext");
        });
    }

    void ExpectProjection(const char* option) {
        script.Expect(ProjectionForm, [option](QWidget& shown) {
            Click(shown, option);
            Click(shown, "bNext");
        });
        if (std::string_view(option) == "rbPolar")
            script.Expect(InfoForm, [](QWidget& shown) { QTest::keyClick(&shown, Qt::Key_Escape); });
    }

    /// One point: what is not locked is typed.
    void DefinePoint(std::int32_t pixelX, std::int32_t pixelY, const char* xField, double x,
                     const char* yField, double y) {
        script.Expect(PointForm, [=](QWidget& shown) {
            for (const auto& [field, value] : {std::pair{xField, x}, std::pair{yField, y}}) {
                if (Control<QWidget>(shown, field).isEnabled())
                    Type(shown, field, QString::number(value, 'f', 9));
            }
            Click(shown, "bNext");
        });
        EXPECT_TRUE(wizard.DoDefineCoordinate(pixelX, pixelY));
    }
    void DefineLonLat(std::int32_t pixelX, std::int32_t pixelY, double longitude, double latitude) {
        DefinePoint(pixelX, pixelY, "txtLonDecDeg", longitude, "txtLatDecDeg", latitude);
    }
    void DefineEastNorth(std::int32_t pixelX, std::int32_t pixelY, double easting, double northing) {
        DefinePoint(pixelX, pixelY, "txtEasting", easting, "txtNorthing", northing);
    }

    ModalScript script;
    clsScalingWizard wizard{nullptr};
    RecordingMap map;
};

} // namespace

TEST_F(ScalingWizard, StartsUnfinished) {
    EXPECT_FALSE(wizard.Finished());
    EXPECT_EQ(wizard.CoordinateIndex(), 0);
    EXPECT_EQ(wizard.Prompt().toStdString(), "");
}

TEST_F(ScalingWizard, HandsADatumAndThreePointsToTheMap) {
    ExpectDatum(QStringLiteral("Denmark"), QStringLiteral("ED50 Denmark"));
    ExpectProjection("rbCartesian");
    ASSERT_TRUE(wizard.DoSelectDatumGrid());
    EXPECT_EQ(wizard.Projection(), 1);
    EXPECT_EQ(wizard.CoordinateIndex(), 1);
    EXPECT_EQ(wizard.Prompt().toStdString(), PointPrompts[0]);
    DefineLonLat(10, 20, 12.5, 55.5);
    EXPECT_EQ(wizard.CoordinateIndex(), 2);
    EXPECT_EQ(wizard.Prompt().toStdString(), PointPrompts[1]);
    EXPECT_EQ(wizard.GivenPoints(), (std::vector<ReferencePoint>{{12.5, 55.5, 10, 20}}));
    DefineLonLat(300, 20, 13, 55.5);
    EXPECT_EQ(wizard.Prompt().toStdString(), PointPrompts[2]);
    EXPECT_FALSE(wizard.Finished());
    DefineLonLat(300, 250, 13, 55);
    EXPECT_TRUE(wizard.Finished());
    EXPECT_EQ(wizard.CoordinateIndex(), 3);
    EXPECT_EQ(wizard.GivenPoints().size(), 3U);
    wizard.ScaleMap(&map);
    EXPECT_THAT(map.calls,
                ::testing::ElementsAre(
                    "SetMapDatum 6378388 0.006722670022333 -81.1 -89.4 -115.8 0.485 0.024 0.413 -0.54",
                    "SetScalingThreePoints 12.5 55.5 10 20, 13 55.5 300 20, 13 55 300 250"));
}

TEST_F(ScalingWizard, HandsAGridWithItsDatumToTheMap) {
    ExpectGrid(QStringLiteral("International"), QStringLiteral("UTM North (wgs84)"), QStringLiteral("32"));
    ExpectProjection("rbCartesian");
    ASSERT_TRUE(wizard.DoSelectDatumGrid());
    DefineEastNorth(0, 0, 500000.25, 6200000);
    DefineEastNorth(100, 0, 501000, 6200000);
    DefineEastNorth(0, 100, 500000, 6199000);
    wizard.ScaleMap(&map);
    EXPECT_THAT(map.calls,
                ::testing::ElementsAre("SetGridIdentifier 1", "SetZone 32", Wgs84Datum,
                                       "SetMapGrid 1 32 0 9 0.9996 5e+05 0 0 0",
                                       "SetScalingThreePoints 500000.25 6200000 0 0, 501000 6200000 100 0, "
                                       "5e+05 6199000 0 100"));
}

TEST_F(ScalingWizard, TakesFourCornersAndFillsInWhatTheyShare) {
    ExpectDatum(QStringLiteral("International"), QStringLiteral("WGS84"));
    ExpectProjection("rbPolar");
    ASSERT_TRUE(wizard.DoSelectDatumGrid());
    EXPECT_EQ(wizard.Projection(), 2);
    EXPECT_EQ(wizard.Prompt().toStdString(), CornerPrompts[0]);
    DefineLonLat(50, 20, 10, 60);
    EXPECT_EQ(wizard.Prompt().toStdString(), CornerPrompts[1]);
    script.Expect(PointForm, [](QWidget& shown) {
        EXPECT_EQ(Control<QLabel>(shown, "lHeadline").text().toStdString(),
                  "Wizard step 6: Enter scaling coordinate 2 (of 4)");
        EXPECT_EQ(Text(shown, "txtLonDecDeg"), "10");
        EXPECT_EQ(Text(shown, "txtLatDecDeg"), "0");
        EXPECT_FALSE(Control<QWidget>(shown, "txtLonDecDeg").isEnabled());
        EXPECT_TRUE(Control<QWidget>(shown, "txtLatDecDeg").isEnabled());
        Type(shown, "txtLatDecDeg", QStringLiteral("50"));
        Click(shown, "bNext");
    });
    EXPECT_TRUE(wizard.DoDefineCoordinate(10, 280));
    EXPECT_EQ(wizard.Prompt().toStdString(), CornerPrompts[2]);
    script.Expect(PointForm, [](QWidget& shown) {
        EXPECT_EQ(Text(shown, "txtLatDecDeg"), "60");
        EXPECT_FALSE(Control<QWidget>(shown, "txtLatDecDeg").isEnabled());
        Type(shown, "txtLonDecDeg", QStringLiteral("20"));
        Click(shown, "bNext");
    });
    EXPECT_TRUE(wizard.DoDefineCoordinate(350, 20));
    EXPECT_EQ(wizard.Prompt().toStdString(), CornerPrompts[3]);
    script.Expect(PointForm, [](QWidget& shown) {
        EXPECT_EQ(Text(shown, "txtLonDecDeg"), "20");
        EXPECT_EQ(Text(shown, "txtLatDecDeg"), "50");
        EXPECT_FALSE(Control<QWidget>(shown, "txtLonDecDeg").isEnabled());
        EXPECT_FALSE(Control<QWidget>(shown, "txtLatDecDeg").isEnabled());
        Click(shown, "bNext");
    });
    EXPECT_TRUE(wizard.DoDefineCoordinate(390, 280));
    EXPECT_TRUE(wizard.Finished());
    wizard.ScaleMap(&map);
    EXPECT_THAT(map.calls,
                ::testing::ElementsAre(
                    Wgs84Datum, "SetScalingCorners 10 60 50 20, 10 50 10 280, 20 60 350 20, 20 50 390 280"));
}

TEST_F(ScalingWizard, FillsInEastingsAndNorthingsOfCornersToo) {
    ExpectGrid(QStringLiteral("Switzerland"), QStringLiteral("Swiss Grid (ch1903)"));
    ExpectProjection("rbPolar");
    ASSERT_TRUE(wizard.DoSelectDatumGrid());
    DefineEastNorth(0, 0, 600000, 210000);
    DefineEastNorth(0, 100, 0, 200000);
    DefineEastNorth(100, 0, 610000, 0);
    DefineEastNorth(100, 100, 0, 0);
    EXPECT_EQ(wizard.GivenPoints().back(), (ReferencePoint{610000, 200000, 100, 100}));
}

TEST_F(ScalingWizard, TakesThePixelAsItStandsInTheForm) {
    ExpectDatum(QStringLiteral("International"), QStringLiteral("WGS84"));
    ExpectProjection("rbCartesian");
    ASSERT_TRUE(wizard.DoSelectDatumGrid());
    script.Expect(PointForm, [](QWidget& shown) {
        EXPECT_EQ(Text(shown, "txtX"), "7");
        Type(shown, "txtX", QStringLiteral("12.9"));
        Type(shown, "txtLatDecDeg", QStringLiteral("5"));
        Click(shown, "bNext");
    });
    EXPECT_TRUE(wizard.DoDefineCoordinate(7, 8));
    EXPECT_EQ(wizard.GivenPoints().front(), (ReferencePoint{0, 5, 12, 8}));
}

TEST_F(ScalingWizard, EndsWithTheSameWordsWhereverItIsCancelled) {
    script.Expect(SelectForm, CancelForm).ExpectBox(Cancelled);
    EXPECT_FALSE(wizard.DoSelectDatumGrid());
    ExpectDatum(QStringLiteral("Italy"), QStringLiteral("WGS84"));
    script.Expect(ProjectionForm, CancelForm).ExpectBox(Cancelled);
    EXPECT_FALSE(wizard.DoSelectDatumGrid());
    ExpectDatum(QStringLiteral("Italy"), QStringLiteral("WGS84"));
    ExpectProjection("rbCartesian");
    EXPECT_TRUE(wizard.DoSelectDatumGrid());
    DefineLonLat(1, 1, 1, 1);
    script.Expect(PointForm, CancelForm).ExpectBox(Cancelled);
    EXPECT_FALSE(wizard.DoDefineCoordinate(5, 5));
    EXPECT_EQ(wizard.CoordinateIndex(), 2);
    EXPECT_EQ(wizard.GivenPoints().size(), 1U);
}

TEST_F(ScalingWizard, GoesOnWithoutACoordinateSystemThatNobodyGave) {
    script.Expect(SelectForm, [](QWidget& shown) { Click(shown, "bNext"); });
    ExpectProjection("rbCartesian");
    ASSERT_TRUE(wizard.DoSelectDatumGrid());
    DefineLonLat(0, 0, 1, 1);
    DefineLonLat(9, 0, 2, 1);
    DefineLonLat(0, 9, 1, 2);
    wizard.ScaleMap(&map);
    EXPECT_THAT(map.calls, ::testing::ElementsAre("SetScalingThreePoints 1 1 0 0, 2 1 9 0, 1 2 0 9"));
}

TEST_F(ScalingWizard, ReportsTheFirstFailureAndCallsNothingMore) {
    for (const char* const refused : {"SetMapDatum", "SetMapGrid", "SetScalingThreePoints"}) {
        clsScalingWizard run(nullptr);
        ExpectGrid(QStringLiteral("Switzerland"), QStringLiteral("Swiss Grid (ch1903)"));
        ExpectProjection("rbCartesian");
        ASSERT_TRUE(run.DoSelectDatumGrid());
        for (int point = 0; point < 3; ++point) {
            script.Expect(PointForm, [](QWidget& shown) {
                Type(shown, "txtEasting", QStringLiteral("1"));
                Click(shown, "bNext");
            });
            run.DoDefineCoordinate(point, 0);
        }
        map.calls.clear();
        map.refuse = refused;
        script.Expect(QStringLiteral("MessageBox"), [](QWidget& shown) {
            const auto& box = dynamic_cast<QMessageBox&>(shown);
            EXPECT_EQ(box.text().toStdString(), "Invalid scaling: No.");
            EXPECT_EQ(box.icon(), QMessageBox::Critical);
            QTest::keyClick(&shown, Qt::Key_Return);
        });
        run.ScaleMap(&map);
        EXPECT_EQ(map.calls.back().substr(0, std::string_view(refused).size()), refused);
    }
}

TEST_F(ScalingWizard, ReportsEveryKindOfFailure) {
    struct FailingMap : RecordingMap {
        void SetMapDatum(const QuorvantDatum::Numbers&) override {
            if (lacksMemory)
                throw std::bad_alloc();
            throw std::runtime_error("Broken.");
        }
        bool lacksMemory = false;
    };
    FailingMap failing;
    ExpectDatum(QStringLiteral("International"), QStringLiteral("WGS84"));
    ExpectProjection("rbCartesian");
    ASSERT_TRUE(wizard.DoSelectDatumGrid());
    for (int point = 0; point < 3; ++point)
        DefineLonLat(point, 0, point, 1);
    script.ExpectBox(QStringLiteral("Invalid scaling: Broken."));
    wizard.ScaleMap(&failing);
    failing.lacksMemory = true;
    script.ExpectBox(QStringLiteral("Invalid scaling: There is not enough memory."));
    wizard.ScaleMap(&failing);
    EXPECT_TRUE(script.IsDone());
}

TEST_F(ScalingWizard, ThrowsWhenThereIsNoMap) {
    EXPECT_THROW(wizard.ScaleMap(nullptr), ComponentError);
}

TEST(WizardPointsHandedOver, HaveTheirPixelsRoundedHalfToEven) {
    RecordingMap map;
    WizardPoints points;
    points.x = {0, 1, 2, 3, 4};
    points.pixelX = {0, 10.5, 11.5, -0.5, 1};
    HandOverPoints(map, 1, points);
    HandOverPoints(map, 2, points);
    HandOverPoints(map, 3, points);
    EXPECT_THAT(map.calls, ::testing::ElementsAre("SetScalingThreePoints 1 0 10 0, 2 0 12 0, 3 0 0 0",
                                                  "SetScalingCorners 1 0 10 0, 2 0 12 0, 3 0 0 0, 4 0 1 0"));
    points.pixelX[1] = 3e9;
    EXPECT_THROW(HandOverPoints(map, 1, points), ComponentError);
    EXPECT_EQ(map.calls.size(), 2U);
    EXPECT_THROW(points.At(5), std::out_of_range);
}

// The same through a real map. --------------------------------------------------------------------------

namespace {

class ScaledSheet : public ScalingWizard {
protected:
    ScaledSheet() : library(CreateAtlavexLibrary()) {
        QImage image(400, 300, QImage::Format_RGB32);
        image.fill(Qt::white);
        image.save(QString::fromStdString((folder / "sheet.png").string()));
        sheet = library->AddMapFromImageFile((folder / "sheet.png").string(), "sheet", 256, 256);
    }

    TempFolder folder;
    std::unique_ptr<AtlavexLibrary> library;
    std::shared_ptr<AtlavexMap> sheet;
};

} // namespace

TEST_F(ScaledSheet, ReadsOutTheCornersOfAPolarSheet) {
    ExpectDatum(QStringLiteral("International"), QStringLiteral("WGS84"));
    ExpectProjection("rbPolar");
    ASSERT_TRUE(wizard.DoSelectDatumGrid());
    DefineLonLat(60, 20, 10, 60);
    DefineLonLat(10, 280, 10, 50);
    DefineLonLat(340, 20, 20, 60);
    DefineLonLat(390, 280, 20, 50);
    wizard.ScaleMap(sheet.get());
    EXPECT_FALSE(sheet->HasGrid());
    for (const ReferencePoint& point : wizard.GivenPoints()) {
        const WorldPosition world =
            sheet->PixelToWorld({static_cast<double>(point.pixelX), static_cast<double>(point.pixelY)});
        EXPECT_NEAR(world.x, point.x, 1e-9);
        EXPECT_NEAR(world.y, point.y, 1e-9);
    }
    EXPECT_NEAR(sheet->PixelToWorld({200, 150}).x, 15, 1e-9);
}

TEST_F(ScaledSheet, IsRefusedWithTheComponentsSentenceWhenThePointsAreOnALine) {
    ExpectDatum(QStringLiteral("International"), QStringLiteral("WGS84"));
    ExpectProjection("rbCartesian");
    ASSERT_TRUE(wizard.DoSelectDatumGrid());
    for (int point = 0; point < 3; ++point)
        DefineLonLat(point * 10, point * 10, point + 1, point + 1);
    std::string sentence;
    script.Expect(QStringLiteral("MessageBox"), [&sentence](QWidget& shown) {
        sentence = dynamic_cast<QMessageBox&>(shown).text().toStdString();
        QTest::keyClick(&shown, Qt::Key_Return);
    });
    wizard.ScaleMap(sheet.get());
    EXPECT_THAT(sentence, ::testing::StartsWith("Invalid scaling: "));
    EXPECT_GT(sentence.size(), 25U);
    EXPECT_FALSE(sheet->IsScaled());
}

TEST_F(ScaledSheet, KeepsItsFormerGeoreferenceWhenAnotherIsRefused) {
    sheet->SetMapDatum(MakeDatum(17).AsNumbers());
    sheet->SetScalingThreePoints({9, 56, 0, 0}, {10, 56, 100, 0}, {9, 55, 0, 100});
    const Georeference former = sheet->MapGeoreference();
    const LonLat before = sheet->WorldToWgs84(sheet->PixelToWorld({50, 40}));
    ExpectGrid(QStringLiteral("International"), QStringLiteral("UTM North (wgs84)"), QStringLiteral("32"));
    ExpectProjection("rbCartesian");
    ASSERT_TRUE(wizard.DoSelectDatumGrid());
    for (int point = 0; point < 3; ++point)
        DefineEastNorth(point * 10, point * 10, 500000 + point, 6200000 + point);
    script.Expect(QStringLiteral("MessageBox"),
                  [](QWidget& shown) { QTest::keyClick(&shown, Qt::Key_Return); });
    wizard.ScaleMap(sheet.get());
    EXPECT_EQ(sheet->MapGeoreference(), former);
    const LonLat after = sheet->WorldToWgs84(sheet->PixelToWorld({50, 40}));
    EXPECT_EQ(after.longitude, before.longitude);
    EXPECT_EQ(after.latitude, before.latitude);
}

TEST_F(ScaledSheet, IsNotGivenTheSystemOfARunThatFailedInBetween) {
    WizardPoints points;
    points.x = {0, 9, 10, 9, 0};
    points.y = {0, 56, 56, 55, 0};
    points.pixelX = {0, 3e9, 100, 0, 0}; // beyond 32 bits: refused before it reaches the map
    points.pixelY = {0, 0, 0, 100, 0};
    script.Expect(QStringLiteral("MessageBox"),
                  [](QWidget& shown) { QTest::keyClick(&shown, Qt::Key_Return); });
    EXPECT_FALSE(RunHandOver(nullptr, *sheet, [&] {
        HandOverGrid(*sheet, 28, 32, MakeGrid(28, 32));
        HandOverPoints(*sheet, 1, points);
    }));
    EXPECT_EQ(sheet->MapGeoreference(), Georeference{});
    points.pixelX[1] = 0;
    EXPECT_TRUE(RunHandOver(nullptr, *sheet, [&] { HandOverPoints(*sheet, 1, points); }));
    EXPECT_FALSE(sheet->HasGrid());
    EXPECT_FALSE(sheet->MapGeoreference().datum.has_value());
}

TEST_F(ScaledSheet, KnowsItsGridAndZone) {
    ExpectGrid(QStringLiteral("Germany"), QStringLiteral("UTM (ed50)"), QStringLiteral("32"));
    ExpectProjection("rbCartesian");
    ASSERT_TRUE(wizard.DoSelectDatumGrid());
    DefineEastNorth(0, 0, 500000, 6200000);
    DefineEastNorth(100, 0, 501000, 6200000);
    DefineEastNorth(0, 100, 500000, 6199000);
    wizard.ScaleMap(sheet.get());
    EXPECT_EQ(sheet->MapGeoreference().gridIdentifier, 28);
    EXPECT_EQ(sheet->MapGeoreference().zone, "32");
}
