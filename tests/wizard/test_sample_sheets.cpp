#include "tests/coordinates/ReferenceProj.h"
#include "tests/support/RunProgram.h"
#include "tests/support/desktop/Controls.h"
#include "tests/support/desktop/ExpectedTexts.h"
#include "tests/wizard/ReadOutTruth.h"
#include "tests/wizard/WizardRun.h"

#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

// The same over the sample sheets, which come with a table of their printed crossings.

namespace {

class SampleSheets : public WizardRun {
protected:
    void Make() {
        const ProgramResult made =
            RunProgram({"/usr/bin/python3", "-B", SOURCE_DIR "/samples/make_sheets.py", PathOf("made")});
        ASSERT_EQ(made.status, 0) << made.err;
        QFile file(QString::fromStdString(PathOf("made/truth.json")));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        truth_ = QJsonDocument::fromJson(file.readAll()).object();
    }

    std::vector<QJsonObject> CrossingsOf(const char* sheet) const {
        std::vector<QJsonObject> crossings;
        for (const QJsonValue& crossing : truth_[QLatin1String(sheet)][QLatin1String("crossings")].toArray())
            crossings.push_back(crossing.toObject());
        return crossings;
    }
    static QPoint PixelOf(const QJsonObject& crossing) {
        return QPointF(crossing[QLatin1String("x")].toDouble(), crossing[QLatin1String("y")].toDouble())
            .toPoint();
    }

    /// Reads out the crossings in sight around the one nearest the far corner, at every zoom.
    std::vector<std::string> ReadCrossings(const char* sheet, const QPoint& far,
                                           const std::function<void(const QJsonObject&, int)>& check) {
        std::vector<std::string> readOuts;
        for (const int slider : Sliders) {
            SetSlider(slider);
            ScrollToFarCorner();
            if (!IsInSight(far))
                ScrollTo(far);
            for (const QJsonObject& crossing : CrossingsOf(sheet)) {
                if (!IsInSight(PixelOf(crossing)))
                    continue;
                readOuts.push_back(ReadOutAt(PixelOf(crossing)));
                SCOPED_TRACE(readOuts.back() + ", slider " + std::to_string(slider));
                check(crossing, slider);
            }
        }
        return readOuts;
    }

    void CheckKilometre(const QJsonObject& crossing, int slider) {
        const auto [easting, northing] = ReadOutNumbers(TextOf("lStatus"));
        const double allowed = Tolerance(slider) * 2.5;
        EXPECT_NEAR(easting, crossing[QLatin1String("easting")].toDouble(), allowed);
        EXPECT_NEAR(northing, crossing[QLatin1String("northing")].toDouble(), allowed);
        // Below 100 % a line of one pixel pales.
        if (slider >= 0) {
            EXPECT_EQ(Viewer().grab().toImage().pixelColor(PlaceOf(PixelOf(crossing))), QColor(64, 96, 190));
        }
    }
    std::vector<std::string> ReadKilometres() {
        return ReadCrossings("topographic", {4500, 3330}, [this](const QJsonObject& crossing, int slider) {
            CheckKilometre(crossing, slider);
        });
    }

    /// On the printed projection the read-out is no further from the crossing than the pixel that is read.
    void CheckConic(const QJsonObject& crossing, int slider) {
        const double metres = truth_[QLatin1String("polar")][QLatin1String("metres_per_pixel")].toDouble();
        const auto [longitude, latitude] = ReadOutNumbers(TextOf("lStatus"));
        const PJ_XY shown = Conic(longitude, latitude);
        const PJ_XY printed = Conic(crossing[QLatin1String("longitude")].toDouble(),
                                    crossing[QLatin1String("latitude")].toDouble());
        const double cornerTolerance = 0.0125;
        const double allowed = Tolerance(slider) + 0.5 + cornerTolerance;
        EXPECT_LE(std::abs(shown.x - printed.x) / metres, allowed);
        EXPECT_LE(std::abs(shown.y - printed.y) / metres, allowed);
    }
    std::vector<std::string> ReadMeridians() {
        return ReadCrossings("polar", {2742, 1981}, [this](const QJsonObject& crossing, int slider) {
            CheckConic(crossing, slider);
        });
    }
    PJ_XY Conic(double longitude, double latitude) const {
        const auto definition = truth_[QLatin1String("polar")][QLatin1String("projection")].toString();
        static const ReferencePointer projection = ReferenceObject(definition.toStdString());
        return proj_trans(projection.get(), PJ_FWD,
                          proj_coord(proj_torad(longitude), proj_torad(latitude), 0, 0))
            .xy;
    }

    void AddBesideItsWorldfile() {
        ExpectMapAdded(PathOf("made/sheet-rgb.tif"));
        Expecting().ExpectBox(WorldfileFound, QMessageBox::Yes);
        Expecting().Expect(QStringLiteral("frmSelectWorldfileGrid"), [](QWidget& shown) {
            ::Pick(shown, "ddCountry", QStringLiteral("International"));
            ::Pick(shown, "ddGrid", QStringLiteral("UTM North (wgs84)"));
            Type(shown, "txtZone", QStringLiteral("33"));
            Click(shown, "bNext");
        });
        Choose("mBitmapNew");
        ASSERT_TRUE(State().mapScaled);
    }

    void ScaleByThreeClicks() {
        SetSlider(0);
        ExpectGrid(QStringLiteral("International"), QStringLiteral("UTM North (wgs84)"),
                   QStringLiteral("33"));
        ExpectProjection("rbCartesian");
        Choose("mBitmapScalingWizard");
        ExpectPoint({{500, 530}, 380000, 5158000}, QStringLiteral("meters"));
        ClickPixel({500, 530});
        ExpectPoint({{4500, 530}, 390000, 5158000}, QStringLiteral("meters"));
        ClickPixel({4500, 530});
        ExpectPoint({{4500, 3330}, 390000, 5151000}, QStringLiteral("meters"));
        Expecting().ExpectBox(ScalingCompleted);
        ClickPixel({4500, 3330});
    }

    void AddAndScaleByFourCorners() {
        ExpectMapAdded(PathOf("made/polar.png"));
        ExpectDatum(QStringLiteral("International"), QStringLiteral("WGS84"));
        ExpectProjection("rbPolar");
        ExpectInfo();
        Choose("mBitmapNew");
        const std::array<TypedPoint, 4> corners{
            TypedPoint{{865, 225}, 10, 78}, TypedPoint{{258, 1981}, 10, 66}, TypedPoint{{2135, 225}, 50, 78},
            TypedPoint{{2742, 1981}, 50, 66}};
        for (const TypedPoint& corner : corners) {
            ExpectPoint(corner);
            if (corner.pixel == corners.back().pixel)
                Expecting().ExpectBox(ScalingCompleted);
            ClickPixel(corner.pixel);
        }
    }

private:
    QJsonObject truth_;
};

} // namespace

TEST_F(SampleSheets, ReadOutTheirPrintedCrossingsAndDoSoWhenReopened) {
    Make();
    StartSmall();
    AddBesideItsWorldfile();
    const std::vector<std::string> kilometres = ReadKilometres();
    EXPECT_GT(kilometres.size(), 20U);
    EXPECT_EQ(kilometres.back(), "(meters) Easting: 390000 Northing: 5151000");
    ScaleByThreeClicks();
    EXPECT_EQ(ReadKilometres(), kilometres);
    AddAndScaleByFourCorners();
    const std::vector<std::string> meridians = ReadMeridians();
    EXPECT_GT(meridians.size(), 5U);
    EXPECT_EQ(meridians.back(), "Longitude: 50.0000000 E Latitude: 66.0000000 N");
    SaveAndReopen("samples.Atlavex");
    EXPECT_EQ(ReadKilometres(), kilometres);
    EditorTest::Pick("ddMaps", 1);
    EXPECT_EQ(ReadMeridians(), meridians);
}
