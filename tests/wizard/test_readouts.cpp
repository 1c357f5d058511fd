#include "app/ReadOut.h"
#include "platform/modFields.h"
#include "tests/coordinates/ReferenceProj.h"
#include "tests/support/desktop/ExpectedTexts.h"
#include "tests/wizard/ReadOutTruth.h"
#include "tests/wizard/WizardRun.h"

#include <QImage>
#include <QLineEdit>
#include <QPainter>

#include <cmath>

// What the status line says over the printed crossings of sheets that were scaled through the wizard. Where
// the crossings are and what they are called comes from PROJ and from published figures.

namespace {

/// Two decimals at most, none that are not needed.
std::string LengthText(double metres) {
    QString text = QString::number(metres, 'f', 2);
    while (text.endsWith(u'0'))
        text.chop(1);
    if (text.endsWith(u'.'))
        text.chop(1);
    return text.toStdString();
}

std::string GridText(double easting, double northing) {
    return "(meters) Easting: " + LengthText(easting) + " Northing: " + LengthText(northing);
}

constexpr QSize SheetSize(7000, 3000);
constexpr QPoint FirstCrossing(484, 486);
constexpr QPoint LastCrossing(6984, 2986);
constexpr int CrossingStep = 500;
constexpr double UnitsPerPixel = 2;

/// A sheet whose printed grid is in its own unit; the crossings are pixels.
struct GridSheet {
    const char* name;
    const char* country;
    const char* grid;
    const char* zone;
    const char* unit;
    double metres; ///< a unit of `unit`
    double x;      ///< of the first crossing, in the unit
    double y;
    int eastward;      ///< the first coordinate grows to the right, or (-1) to the left
    const char* crs;   ///< PROJ's name of the system, where it has one
    LonLat known;      ///< a published point, where it has none
    EastNorth knownAs; ///< its coordinate
};

void PrintTo(const GridSheet& sheet, std::ostream* out) {
    *out << sheet.grid;
}

/// The three crossings that are clicked: two on the left edge, one at the far right.
constexpr std::array<QPoint, 3> Clicked{FirstCrossing, QPoint(LastCrossing.x(), FirstCrossing.y()),
                                        QPoint(FirstCrossing.x(), LastCrossing.y())};

class GridSheets : public WizardRun, public ::testing::WithParamInterface<GridSheet> {
protected:
    TypedPoint Typed(const QPoint& pixel) const {
        const QPoint from = pixel - FirstCrossing;
        return {pixel, GetParam().x + GetParam().eastward * UnitsPerPixel * from.x(),
                GetParam().y - UnitsPerPixel * from.y()};
    }
    EastNorth Metres(const QPoint& pixel) const {
        const TypedPoint typed = Typed(pixel);
        return {typed.x * GetParam().metres, typed.y * GetParam().metres};
    }
    QPointF PixelOf(const EastNorth& metres) const {
        const double unit = GetParam().metres * UnitsPerPixel;
        const EastNorth first = Metres(FirstCrossing);
        return {FirstCrossing.x() + GetParam().eastward * (metres.easting - first.easting) / unit,
                FirstCrossing.y() - (metres.northing - first.northing) / unit};
    }

    /// A place of known longitude and latitude on the sheet, and its coordinate.
    std::pair<LonLat, EastNorth> Graticule() const {
        if (std::string_view(GetParam().crs).empty())
            return {GetParam().known, GetParam().knownAs};
        const ReferenceGrid reference("", GetParam().crs);
        const LonLat middle = reference.Inverse(Metres({3484, 1486}));
        const LonLat crossing{std::nearbyint(middle.longitude * 100) / 100,
                              std::nearbyint(middle.latitude * 100) / 100};
        return {crossing, reference.Forward(crossing)};
    }

    std::string DrawSheet() const {
        QImage sheet(SheetSize, QImage::Format_Grayscale8);
        sheet.fill(Qt::white);
        QPainter painter(&sheet);
        for (const QPoint& crossing : Crossings())
            painter.fillRect(QRect(crossing - QPoint(10, 10), QSize(21, 21)), Qt::black);
        painter.end();
        EXPECT_TRUE(sheet.save(QString::fromStdString(PathOf("sheet.png"))));
        return PathOf("sheet.png");
    }
    static std::vector<QPoint> Crossings() {
        std::vector<QPoint> crossings;
        for (int y = FirstCrossing.y(); y <= LastCrossing.y(); y += CrossingStep)
            for (int x = FirstCrossing.x(); x <= LastCrossing.x(); x += CrossingStep)
                crossings.emplace_back(x, y);
        return crossings;
    }

    void ScaleThroughTheWizard() {
        const auto text = [](const char* word) { return QString::fromLatin1(word); };
        ExpectMapAdded(DrawSheet());
        ExpectGrid(text(GetParam().country), text(GetParam().grid), text(GetParam().zone));
        ExpectProjection("rbCartesian");
        Choose("mBitmapNew");
        for (const QPoint& crossing : Clicked) {
            ExpectPoint(Typed(crossing), text(GetParam().unit));
            if (crossing == Clicked.back())
                Expecting().ExpectBox(ScalingCompleted);
            ClickPixel(crossing);
        }
        ASSERT_TRUE(State().mapScaled);
    }

    /// Reads out all crossings in sight from the far corner at every zoom, and holds them to the truth.
    std::vector<std::string> ReadFarCorners() {
        std::vector<std::string> readOuts;
        for (const int slider : Sliders) {
            SetSlider(slider);
            ScrollToFarCorner();
            EXPECT_TRUE(IsInSight(LastCrossing)) << slider;
            for (const QPoint& crossing : Crossings()) {
                if (IsInSight(crossing))
                    readOuts.push_back(ReadCrossing(crossing, slider));
            }
        }
        return readOuts;
    }
    std::string ReadCrossing(const QPoint& crossing, int slider) {
        const std::string status = ReadOutAt(crossing);
        const QImage screen = Viewer().grab().toImage();
        EXPECT_LT(qGray(screen.pixel(PlaceOf(crossing))), 128) << "not printed there, slider " << slider;
        const auto [easting, northing] = ReadOutNumbers(status);
        const EastNorth truth = Metres(crossing);
        const double allowed = Tolerance(slider) * UnitsPerPixel * GetParam().metres + 0.005001;
        EXPECT_NEAR(easting, truth.easting, allowed) << slider;
        EXPECT_NEAR(northing, truth.northing, allowed) << slider;
        if (slider >= 0) {
            EXPECT_EQ(status, GridText(truth.easting, truth.northing));
        }
        return status;
    }

    /// A crossing of meridian and parallel is as a rule between pixels: the nearest one is read out.
    void ReadGraticule() {
        const auto [place, metres] = Graticule();
        const QPoint pixel = PixelOf(metres).toPoint();
        const double half = UnitsPerPixel * GetParam().metres / 2 + 0.005;
        for (const int slider : {0, 20}) {
            SetSlider(slider);
            ScrollTo(pixel);
            const auto [easting, northing] = ReadOutNumbers(ReadOutAt(pixel));
            EXPECT_NEAR(easting, metres.easting, half);
            EXPECT_NEAR(northing, metres.northing, half);
        }
        const Georeference& stored = State().currentMap->MapGeoreference();
        const LonLat back = GridProjection(*stored.grid, *stored.datum).Inverse(metres);
        // A published point is a position in ETRS89, which is the map's WGS84.
        const LonLat onDatum = std::string_view(GetParam().crs).empty()
                                   ? State().currentMap->WorldToWgs84({metres.easting, metres.northing})
                                   : back;
        EXPECT_LT(GroundDistance(onDatum, place), 0.05);
    }
};

} // namespace

TEST_P(GridSheets, ReadOutTheirPrintedCrossingsAndDoSoWhenReopened) {
    StartSmall();
    ScaleThroughTheWizard();
    const std::vector<std::string> readOuts = ReadFarCorners();
    EXPECT_GT(readOuts.size(), 20U);
    ReadGraticule();
    SaveAndReopen("sheet.Atlavex");
    EXPECT_EQ(TextOf("lStatus"), ScaledStatus);
    EXPECT_EQ(ReadFarCorners(), readOuts);
    ReadGraticule();
}

INSTANTIATE_TEST_SUITE_P(InEachGrid, GridSheets,
                         ::testing::Values(GridSheet{"Utm",
                                                     "International",
                                                     "UTM North (wgs84)",
                                                     "32",
                                                     "meters",
                                                     1,
                                                     500000,
                                                     6200000,
                                                     1,
                                                     "EPSG:32632",
                                                     {},
                                                     {}},
                                           GridSheet{"GaussKrueger",
                                                     "Germany",
                                                     "German Grid (Potsdam)",
                                                     "3",
                                                     "yards",
                                                     0.9144,
                                                     3828000,
                                                     6124000,
                                                     1,
                                                     "EPSG:31467",
                                                     {},
                                                     {}},
                                           GridSheet{"Swiss",
                                                     "Switzerland",
                                                     "Swiss Grid (ch1903)",
                                                     "",
                                                     "meters",
                                                     1,
                                                     600000,
                                                     200000,
                                                     1,
                                                     "EPSG:21781",
                                                     {},
                                                     {}},
                                           GridSheet{"Dutch",
                                                     "The Netherlands",
                                                     "Dutch Grid (Amersfoort)",
                                                     "",
                                                     "Int. feet",
                                                     0.3048,
                                                     508000,
                                                     1519000,
                                                     1,
                                                     "EPSG:28992",
                                                     {},
                                                     {}},
                                           GridSheet{"StatePlane",
                                                     "United States",
                                                     "State Plane (nad83)",
                                                     "0101 Alabama East",
                                                     "U.S. feet",
                                                     0.30480061,
                                                     656000,
                                                     1000000,
                                                     1,
                                                     "EPSG:26929",
                                                     {},
                                                     {}},
                                           // Its first coordinate grows to the west. The point is one that
                                           // the Danish agency published.
                                           GridSheet{"System34",
                                                     "Denmark",
                                                     "System 34 (Main land)",
                                                     "",
                                                     "meters",
                                                     1,
                                                     264000,
                                                     287000,
                                                     -1,
                                                     "",
                                                     {9.5, 57},
                                                     {263190.2497, 286078.3847}}),
                         [](const auto& sheet) { return std::string(sheet.param.name); });

// The texts themselves. -----------------------------------------------------------------------------------

TEST(ReadOutTexts, HaveSevenDecimalsOfADegreeOrNineOfARadianAndAHemisphere) {
    struct Row {
        double longitude;
        double latitude;
        AngleUnit unit;
        const char* text;
    };
    for (const Row& row :
         {Row{9.12345678, -56.5, AngleUnit::Degrees, "Longitude: 9.1234568 E Latitude: 56.5000000 S"},
          Row{-180, 90, AngleUnit::Degrees, "Longitude: 180.0000000 W Latitude: 90.0000000 N"},
          Row{-90, 45, AngleUnit::Radians, "Longitude: 1.570796327 W Latitude: 0.785398163 N"},
          // The equator and the first meridian, and the nearest that is shown beside them.
          Row{-1e-15, -4e-8, AngleUnit::Degrees, "Longitude: 0.0000000 E Latitude: 0.0000000 N"},
          Row{-6e-8, -1e-7, AngleUnit::Degrees, "Longitude: 0.0000001 W Latitude: 0.0000001 S"},
          Row{-2e-8, -6e-8, AngleUnit::Radians, "Longitude: 0.000000000 E Latitude: 0.000000001 S"}})
        EXPECT_EQ(GeographicReadOut(row.longitude, row.latitude, row.unit, QLocale::c()).toStdString(),
                  row.text);
}

TEST(ReadOutTexts, HaveAnglesThatCanBeTypedBackByTheUser) {
    const QLocale german(QLocale::German, QLocale::Germany);
    EXPECT_EQ(GeographicReadOut(10.2428911, -56.5, AngleUnit::Degrees, german).toStdString(),
              "Longitude: 10,2428911 E Latitude: 56,5000000 S");
    EXPECT_EQ(GeographicReadOut(-90, 45, AngleUnit::Radians, german).toStdString(),
              "Longitude: 1,570796327 W Latitude: 0,785398163 N");
    for (const QLocale& locale : {german, QLocale::c(), QLocale(QLocale::Arabic, QLocale::Egypt)}) {
        const QStringList words = GeographicReadOut(10.2428911, 56.5, AngleUnit::Degrees, locale).split(u' ');
        const QLineEdit field(words.at(1));
        EXPECT_EQ(GetNumber(field, locale), 10.2428911) << words.at(1).toStdString();
    }
}

TEST(ReadOutTexts, HaveLengthsRoundedToEvenInTheUsersDigits) {
    const QLocale german(QLocale::German, QLocale::Germany);
    EXPECT_EQ(GridReadOut(500000.125, -0.375, QLocale::c()).toStdString(),
              "(meters) Easting: 500000.12 Northing: -0.38");
    EXPECT_EQ(GridReadOut(1234567.5, -0.001, german).toStdString(),
              "(meters) Easting: 1234567,5 Northing: 0");
}
