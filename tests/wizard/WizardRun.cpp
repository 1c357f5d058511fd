#include "tests/wizard/WizardRun.h"

#include "tests/support/desktop/Controls.h"
#include "tests/support/desktop/ExpectedTexts.h"

#include <cmath>

namespace {

/// A scroll bar holds 16 bits: beyond that one of its units is ten pixels.
constexpr int LargestScrollValue = 32767;

/// A typed number without needless zeros.
QString Digits(double value) {
    return QString::number(value, 'g', 15);
}

} // namespace

void WizardRun::StartSmall() {
    Start();
    Window().resize(640, 400);
    QApplication::processEvents();
}

void WizardRun::ExpectMapAdded(const std::string& image) {
    ExpectFileDialog(QStringLiteral("Open new bitmap"), image);
    Expecting().Expect(QStringLiteral("frmNewMap"), [](QWidget& shown) { Click(shown, "btnOK"); });
}

void WizardRun::ExpectDatum(const QString& country, const QString& datum) {
    Expecting().Expect(QStringLiteral("frmSelectDatumGrid"), [=](QWidget& shown) {
        ::Pick(shown, "ddCountry", country);
        ::Pick(shown, "ddDatum", datum);
        Click(shown, "bNext");
    });
}

void WizardRun::ExpectGrid(const QString& country, const QString& grid, const QString& zone) {
    Expecting().Expect(QStringLiteral("frmSelectDatumGrid"), [=](QWidget& shown) {
        ::Pick(shown, "ddCountry", country);
        Click(shown, "rdShowGrid");
        ::Pick(shown, "ddGrid", grid);
        if (IsShown(shown, "txtZone"))
            Type(shown, "txtZone", zone);
        else if (!zone.isEmpty())
            ::Pick(shown, "ddZone", zone);
        Click(shown, "bNext");
    });
}

void WizardRun::ExpectProjection(const char* option) {
    Expecting().Expect(QStringLiteral("frmProjection"), [option](QWidget& shown) {
        Click(shown, option);
        Click(shown, "bNext");
    });
}

void WizardRun::ExpectInfo() {
    Expecting().Expect(QStringLiteral("frmInfo"), [](QWidget& shown) { Click(shown, "bNext"); });
}

void WizardRun::ExpectPoint(const TypedPoint& point, const QString& unit) {
    Expecting().Expect(QStringLiteral("frmCoordinate"), [=, this](QWidget& shown) {
        EXPECT_EQ(TextOf("lHeader"), "") << "emptied while the form is open";
        EXPECT_EQ(Text(shown, "txtX"), std::to_string(point.pixel.x()));
        EXPECT_EQ(Text(shown, "txtY"), std::to_string(point.pixel.y()));
        if (!unit.isEmpty())
            ::Pick(shown, "ddUnit", unit);
        const char* const xField = unit.isEmpty() ? "txtLonDecDeg" : "txtEasting";
        const char* const yField = unit.isEmpty() ? "txtLatDecDeg" : "txtNorthing";
        for (const auto& [field, value] : {std::pair{xField, point.x}, std::pair{yField, point.y}}) {
            if (::Control<QWidget>(shown, field).isEnabled())
                Type(shown, field, Digits(value));
            else
                EXPECT_EQ(Text(shown, field), Digits(value).toStdString()) << "filled in: " << field;
        }
        Click(shown, "bNext");
    });
}

void WizardRun::ExpectInvalidScaling() {
    Expecting().Expect(QStringLiteral("MessageBox"), [this](QWidget& shown) {
        const auto& box = dynamic_cast<QMessageBox&>(shown);
        const QString start = QStringLiteral("Invalid scaling: ");
        EXPECT_TRUE(box.text().startsWith(start)) << box.text().toStdString();
        EXPECT_GT(box.text().size(), start.size() + 10) << "without a reason";
        EXPECT_EQ(box.icon(), QMessageBox::Critical);
        EXPECT_EQ(TextOf("lStatus"), NotScaledStatus);
        QTest::keyClick(&shown, Qt::Key_Return);
    });
}

void WizardRun::ClickPixel(const QPoint& pixel) {
    ScrollTo(pixel);
    ASSERT_TRUE(IsInSight(pixel));
    QTest::mouseClick(&Viewer(), Qt::LeftButton, {}, PlaceOf(pixel));
    QApplication::processEvents();
}

int WizardRun::Unit(int mapSize, int viewerSize) {
    return std::nearbyint(mapSize * Zoom()) - viewerSize > LargestScrollValue ? 10 : 1;
}

QPoint WizardRun::Units() {
    const AtlavexMap& map = *State().currentMap;
    return {Unit(map.Width(), Viewer().width()), Unit(map.Height(), Viewer().height())};
}

QPoint WizardRun::PlaceOf(const QPoint& pixel) {
    const QPoint units = Units();
    return {static_cast<int>(std::nearbyint(pixel.x() * Zoom())) -
                Find<QScrollBar>("hscrollMap").value() * units.x(),
            static_cast<int>(std::nearbyint(pixel.y() * Zoom())) -
                Find<QScrollBar>("vscrollMap").value() * units.y()};
}

bool WizardRun::IsInSight(const QPoint& pixel) {
    return Viewer().rect().contains(PlaceOf(pixel));
}

void WizardRun::ScrollTo(const QPoint& pixel) {
    const QPoint units = Units();
    const auto value = [&](int position, int viewerSize, int unit) {
        return static_cast<int>((position * Zoom() - viewerSize / 2.0) / unit);
    };
    Find<QScrollBar>("hscrollMap").setValue(value(pixel.x(), Viewer().width(), units.x()));
    Find<QScrollBar>("vscrollMap").setValue(value(pixel.y(), Viewer().height(), units.y()));
}

void WizardRun::ScrollToFarCorner() {
    for (const char* const name : {"hscrollMap", "vscrollMap"})
        Find<QScrollBar>(name).setValue(Find<QScrollBar>(name).maximum());
}

std::string WizardRun::ReadOutAt(const QPoint& pixel) {
    if (!IsInSight(pixel))
        ScrollTo(pixel);
    // A mouse that is there already does not move: it comes from beside.
    for (const QPoint& from : {QPoint(1, 0), QPoint(0, 0)})
        QTest::mouseMove(Window().windowHandle(), Viewer().mapTo(&Window(), PlaceOf(pixel) + from));
    QApplication::processEvents();
    return TextOf("lStatus");
}

void WizardRun::SaveAndReopen(const std::string& name) {
    ExpectFileDialog(QStringLiteral("Save Atlavex As"), PathOf(name));
    Choose("mFileSaveAtlavexAs");
    EXPECT_FALSE(State().modified);
    OpenByMenu(PathOf(name));
}

void WizardRun::ExpectNoWizard() {
    EXPECT_EQ(TextOf("lHeader"), "");
    EXPECT_TRUE(Viewer().Marks().empty());
}
