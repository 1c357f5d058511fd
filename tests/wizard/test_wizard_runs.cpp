#include "tests/support/desktop/Controls.h"
#include "tests/support/desktop/ExpectedTexts.h"
#include "tests/support/desktop/PrivateBus.h"
#include "tests/wizard/WizardRun.h"

#include <QImage>

// Whole runs of the wizards in the main window, from an image file to a scaled map.

namespace {

class WholeRuns : public WizardRun {
protected:
    std::string Image(const std::string& name) {
        QImage image(1200, 900, QImage::Format_RGB32);
        image.fill(Qt::white);
        EXPECT_TRUE(image.save(QString::fromStdString(PathOf(name)), "PNG"));
        return PathOf(name);
    }

    /// When it is said that the scaling is complete, everything else has been done.
    void ExpectCompletion() {
        Expecting().Expect(QStringLiteral("MessageBox"), [this](QWidget& shown) {
            EXPECT_EQ(dynamic_cast<QMessageBox&>(shown).text(), ScalingCompleted);
            EXPECT_EQ(TextOf("lStatus"), ScaledStatus);
            EXPECT_TRUE(State().mapScaled);
            EXPECT_TRUE(State().modified);
            ExpectNoWizard();
            QTest::keyClick(&shown, Qt::Key_Return);
        });
    }

    /// Clicks the points one by one; the prompts are those of the clicks.
    template <std::size_t Count>
    void GivePoints(const std::array<const char*, Count>& prompts,
                    const std::array<TypedPoint, Count>& points, const QString& unit = {}) {
        for (std::size_t i = 0; i < Count; ++i) {
            EXPECT_EQ(TextOf("lHeader"), prompts.at(i));
            EXPECT_EQ(TextOf("lStatus"), NotScaledStatus);
            EXPECT_EQ(Viewer().Marks().size(), i);
            ExpectPoint(points.at(i), unit);
            if (i + 1 == Count)
                ExpectCompletion();
            ClickPixel(points.at(i).pixel);
        }
        ExpectNoWizard();
        EXPECT_TRUE(Expecting().IsDone());
    }

    /// Step 1 with another program's grid.
    void ExpectCustomGrid() {
        Expecting().Expect(QStringLiteral("frmSelectDatumGrid"), [](QWidget& shown) {
            Click(shown, "rdShowGrid");
            Click(shown, "bNext");
        });
    }

    void ExpectWorldfileGrid() {
        Expecting().Expect(QStringLiteral("frmSelectWorldfileGrid"), [this](QWidget& shown) {
            EXPECT_EQ(TextOf("lStatus"), NotScaledStatus);
            EXPECT_EQ(TextOf("lHeader"), "");
            ::Pick(shown, "ddCountry", QStringLiteral("International"));
            Type(shown, "txtZone", QStringLiteral("32"));
            Click(shown, "bNext");
        });
    }
    void AddBesideWorldfile(const std::string& content, QMessageBox::StandardButton answer) {
        WriteWholeFile(PathOf("sheet.tfw"), content);
        ExpectMapAdded(Image("sheet.tif"));
        Expecting().ExpectBox(WorldfileFound, answer);
    }
};

const std::array<TypedPoint, 3> GridPoints{TypedPoint{{0, 1}, 400000, 299999},
                                           TypedPoint{{1000, 1}, 401000, 299999},
                                           TypedPoint{{0, 801}, 400000, 299199}};

const std::string WorldfileText = "2.5\n0\n0\n-2.5\n500000\n6200000\n";

} // namespace

TEST_F(WholeRuns, LinearInLongitudeAndLatitude) {
    StartSmall();
    ExpectMapAdded(Image("sheet.png"));
    ExpectDatum(QStringLiteral("Denmark"), QStringLiteral("ED50 Denmark"));
    ExpectProjection("rbCartesian");
    Choose("mBitmapNew");
    GivePoints(PointPrompts, {TypedPoint{{50, 40}, 8, 57}, TypedPoint{{1150, 40}, 10.2, 57},
                              TypedPoint{{50, 840}, 8, 55.4}});
    EXPECT_EQ(ReadOutAt({550, 440}), "Longitude: 9.0000000 E Latitude: 56.2000000 N");
    EXPECT_FALSE(IsEnabled("mnuTileExport"));
    SaveAndReopen("a.Atlavex");
    EXPECT_EQ(ReadOutAt({550, 440}), "Longitude: 9.0000000 E Latitude: 56.2000000 N");
}

TEST_F(WholeRuns, PolarInLongitudeAndLatitudeOfTheSouthAndWest) {
    StartSmall();
    ExpectMapAdded(Image("sheet.png"));
    ExpectDatum(QStringLiteral("International"), QStringLiteral("WGS84"));
    ExpectProjection("rbPolar");
    ExpectInfo();
    Choose("mBitmapNew");
    // Meridians that meet below the sheet, as they do in the south.
    GivePoints(CornerPrompts, {TypedPoint{{100, 50}, -70, -50}, TypedPoint{{300, 850}, -70, -60},
                               TypedPoint{{1100, 50}, -50, -50}, TypedPoint{{900, 850}, -50, -60}});
    EXPECT_EQ(ReadOutAt({300, 850}), "Longitude: 70.0000000 W Latitude: 60.0000000 S");
    // On the axis, where the parallel's arc about the meeting point (600, 2050) has not come down yet: 1200
    // pixels from there, the corners being 1236.93 and 2061.55 away.
    EXPECT_EQ(ReadOutAt({600, 850}), "Longitude: 60.0000000 W Latitude: 60.4478625 S");
    SaveAndReopen("a.Atlavex");
    EXPECT_EQ(ReadOutAt({300, 850}), "Longitude: 70.0000000 W Latitude: 60.0000000 S");
}

TEST_F(WholeRuns, PolarInEastingAndNorthing) {
    StartSmall();
    ExpectMapAdded(Image("sheet.png"));
    ExpectGrid(QStringLiteral("Switzerland"), QStringLiteral("Swiss Grid (ch1903)"));
    ExpectProjection("rbPolar");
    // Whatever closes the page of instructions, the wizard goes on.
    Expecting().Expect(QStringLiteral("frmInfo"), [](QWidget& shown) { shown.close(); });
    Choose("mBitmapNew");
    // The form keeps the unit for the points that follow.
    GivePoints(CornerPrompts,
               {TypedPoint{{100, 50}, 600000, 210000}, TypedPoint{{100, 850}, 600000, 202000},
                TypedPoint{{1100, 50}, 610000, 210000}, TypedPoint{{1100, 850}, 610000, 202000}},
               QStringLiteral("meters"));
    EXPECT_EQ(ReadOutAt({600, 450}), "(meters) Easting: 605000 Northing: 206000");
}

TEST_F(WholeRuns, AWorldfileNeedsNoClick) {
    StartSmall();
    AddBesideWorldfile(WorldfileText, QMessageBox::Yes);
    ExpectWorldfileGrid();
    Choose("mBitmapNew");
    ExpectNoWizard();
    EXPECT_EQ(TextOf("lStatus"), ScaledStatus);
    EXPECT_TRUE(State().modified);
    EXPECT_EQ(ReadOutAt({100, 200}), "(meters) Easting: 500250 Northing: 6199500");
    QTest::mouseClick(&Viewer(), Qt::LeftButton, {}, PlaceOf({1, 0}));
    EXPECT_EQ(TextOf("lStatus"), "(meters) Easting: 500002.5 Northing: 6200000");
    SaveAndReopen("a.Atlavex");
    EXPECT_EQ(ReadOutAt({100, 200}), "(meters) Easting: 500250 Northing: 6199500");
}

TEST_F(WholeRuns, AWorldfileThatIsNotWantedLeavesTheClicks) {
    StartSmall();
    AddBesideWorldfile(WorldfileText, QMessageBox::No);
    ExpectGrid(QStringLiteral("International"), QStringLiteral("UTM (etrs89)"), QStringLiteral("32"));
    ExpectProjection("imgCartesian");
    Choose("mBitmapNew");
    GivePoints(PointPrompts, GridPoints, QStringLiteral("meters"));
    EXPECT_EQ(ReadOutAt({1, 2}), "(meters) Easting: 400001 Northing: 299998");
}

TEST_F(WholeRuns, AWorldfileThatIsNoneLeavesTheMapUnscaled) {
    StartSmall();
    AddBesideWorldfile("2.5\n0\nnorth\n", QMessageBox::Yes);
    ExpectWorldfileGrid();
    ExpectInvalidScaling();
    Choose("mBitmapNew");
    EXPECT_EQ(TextOf("lStatus"), NotScaledStatus);
    EXPECT_FALSE(State().currentMap->IsScaled());
    ExpectNoWizard();
}

TEST_F(WholeRuns, InAGridOfAnotherProgram) {
    PrivateBus bus;
    bus.StartService(QStringLiteral("good"));
    StartSmall();
    ExpectMapAdded(Image("sheet.png"));
    ExpectCustomGrid();
    ExpectProjection("rbCartesian");
    Choose("mBitmapNew");
    GivePoints(PointPrompts, GridPoints, QStringLiteral("meters"));
    EXPECT_EQ(ReadOutAt({1, 2}), "(meters) Easting: 400001 Northing: 299998");
    // The false origin of its projection, whatever its name.
    const LonLat origin = State().currentMap->WorldToWgs84({400000, -100000});
    EXPECT_NEAR(origin.longitude, -2, 0.01);
    EXPECT_NEAR(origin.latitude, 49, 0.01);
}

TEST_F(WholeRuns, InAGridOfAnotherProgramThatIsNoneOrThatDoesNotAnswer) {
    for (const bool answers : {true, false}) {
        SCOPED_TRACE(answers);
        PrivateBus bus;
        if (answers)
            bus.StartService(QStringLiteral("unknown"));
        StartSmall();
        ExpectMapAdded(Image("sheet.png"));
        ExpectCustomGrid();
        ExpectProjection("rbCartesian");
        Choose("mBitmapNew");
        for (const TypedPoint& point : GridPoints) {
            ExpectPoint(point, QStringLiteral("meters"));
            if (&point == &GridPoints.back()) {
                if (answers)
                    ExpectInvalidScaling();
                Expecting().ExpectBox(ScalingCompleted);
            }
            ClickPixel(point.pixel);
        }
        ExpectNoWizard();
        // Without any system the map takes the points as they are.
        EXPECT_EQ(State().currentMap->IsScaled(), !answers);
        EXPECT_FALSE(State().currentMap->MapGeoreference().grid.has_value());
    }
}
