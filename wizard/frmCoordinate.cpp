#include "wizard/frmCoordinate.h"

#include "base/CheckedNumbers.h"
#include "catalogue/modCountryData.h"
#include "catalogue/modGadgets.h"
#include "platform/modFields.h"
#include "platform/modMessages.h"
#include "ui_frmCoordinate.h"
#include "wizard/FormPlacement.h"
#include "wizard/Projections.h"

#include <QGuiApplication>
#include <QLocale>
#include <QScreen>
#include <QShowEvent>
#include <QSignalBlocker>

#include <array>
#include <cmath>
#include <string>

namespace {

constexpr int SecondDecimals = 3;
constexpr int DegreeDecimals = 7;
constexpr int LengthDecimals = 2;

// "3" also stands in the text for polar maps, which have four points.
const auto HelpText =
    QStringLiteral("In this step you must enter the geographic position which "
                   "represtents the X, Y position on the raster map.\r\n"
                   "In total you need to specify 3 coordinates.\r\n"
                   "The coordinates should be as far apart as possible for the best results. "
                   "Try to place them in opposite corners.");

/// The boxes and the list of one angle in degrees, minutes and seconds.
struct AngleFields {
    QLineEdit& degrees;
    QLineEdit& minutes;
    QLineEdit& seconds;
    QComboBox& hemisphere;
};

AngleFields FieldsOf(const Ui::frmCoordinate& ui, bool latitude) {
    return latitude ? AngleFields{*ui.txtLatDeg, *ui.txtLatMin, *ui.txtLatSec, *ui.ddLatHemi}
                    : AngleFields{*ui.txtLonDeg, *ui.txtLonMin, *ui.txtLonSec, *ui.ddLonHemi};
}

void WriteAngle(FieldChecks& checks, const AngleFields& fields, const AngleParts& exact, bool negative) {
    const AngleParts parts = RoundSeconds(exact, SecondDecimals);
    checks.Write(fields.degrees, NumberText(parts.degrees, 0));
    checks.Write(fields.minutes, NumberText(parts.minutes, 0));
    checks.Write(fields.seconds, NumberText(parts.seconds, SecondDecimals));
    const QSignalBlocker silent(fields.hemisphere);
    fields.hemisphere.setCurrentIndex(negative ? 1 : 0);
}

/// The decimal sign that the user's other programs write.
char DecimalSign() {
    return QLocale::system().decimalPoint() == QStringLiteral(",") ? ',' : '.';
}

std::string Pasted(const QString& text) {
    return text.trimmed().toStdString();
}

std::int32_t WholePixel(const QLineEdit& field) {
    return CheckedRound<std::int32_t>(std::floor(GetNumber(field)));
}

} // namespace

frmCoordinate::frmCoordinate(QWidget* parent)
    : WizardForm(parent), ui_(std::make_unique<Ui::frmCoordinate>()), checks_(*this) {
    ui_->setupUi(this);
    ConnectCommonControls();
    ConnectFields();
    ConnectLists();
}

frmCoordinate::~frmCoordinate() = default;

void frmCoordinate::ConnectFields() {
    checks_.Watch(*ui_->txtX, [this] { PixelX = WholePixel(*ui_->txtX); });
    checks_.Watch(*ui_->txtY, [this] { PixelY = WholePixel(*ui_->txtY); });
    const auto paste = [this](const QString& text) { return PasteLonLat(text, WrittenAs::WholeNumber); };
    const auto decimal = [this, &paste](QLineEdit& field, void (QuorvantPosition::*set)(double)) {
        checks_.Watch(
            field,
            [this, &field, set] {
                (position_.*set)(GetNumber(field));
                RefreshPosition();
            },
            paste);
    };
    decimal(*ui_->txtLatDecDeg, &QuorvantPosition::SetLatitude);
    decimal(*ui_->txtLonDecDeg, &QuorvantPosition::SetLongitude);
    WatchParts(true);
    WatchParts(false);
    const auto pasteMeters = [this](const QString& text) { return PasteEastNorth(text); };
    checks_.Watch(
        *ui_->txtEasting, [this] { Easting = Meters(*ui_->txtEasting); }, pasteMeters);
    checks_.Watch(
        *ui_->txtNorthing, [this] { Northing = Meters(*ui_->txtNorthing); }, pasteMeters);
}

void frmCoordinate::WatchParts(bool latitude) {
    const AngleFields fields = FieldsOf(*ui_, latitude);
    for (QLineEdit* const field : {&fields.degrees, &fields.minutes, &fields.seconds})
        checks_.Watch(
            *field, [this, latitude] { StoreParts(latitude); },
            [this](const QString& text) { return PasteLonLat(text, WrittenAs::PartOfAngle); });
}

void frmCoordinate::ConnectLists() {
    connect(ui_->rbDecDeg, &QRadioButton::toggled, this, &frmCoordinate::rbDecDeg_Click);
    connect(ui_->rbDMS, &QRadioButton::toggled, this, &frmCoordinate::rbDMS_Click);
    connect(ui_->ddLatHemi, &QComboBox::currentIndexChanged, this, &frmCoordinate::ddLatHemi_Click);
    connect(ui_->ddLonHemi, &QComboBox::currentIndexChanged, this, &frmCoordinate::ddLonHemi_Click);
    connect(ui_->ddUnit, &QComboBox::currentIndexChanged, this, &frmCoordinate::ddUnit_Click);
}

void frmCoordinate::Form_Load() {
    const QString step =
        QStringLiteral("Wizard step %1: Enter scaling coordinate").arg(2 * CoordinateNumber + 2);
    ui_->lHeadline->setText(
        step + QStringLiteral(" %1 (of %2)").arg(CoordinateNumber).arg(PointsFor(ProjectionType)));
    setWindowTitle(step);
    WriteHelp(*ui_->txtHelp, HelpText);
    checks_.Write(*ui_->txtX, NumberText(PixelX, 0));
    checks_.Write(*ui_->txtY, NumberText(PixelY, 0));
    ui_->frameDatum->setVisible(!UseGrid);
    ui_->frameGrid->setVisible(UseGrid);
    if (UseGrid)
        LoadGrid();
    else
        LoadLonLat();
    EnableFields();
}

void frmCoordinate::LoadGrid() {
    const QSignalBlocker silent(ui_->ddUnit);
    FillCombo(*ui_->ddUnit, Units);
    SelectComboItem(*ui_->ddUnit, unit_, true);
    ShowMeters();
}

void frmCoordinate::LoadLonLat() {
    (degreeFormat_ == QLatin1String("DecDeg") ? ui_->rbDecDeg : ui_->rbDMS)->setChecked(true);
    ShowFormat();
    FillCombo(*ui_->ddLatHemi, NorthSouth);
    FillCombo(*ui_->ddLonHemi, EastWest);
    position_ = QuorvantPosition(Longitude, Latitude);
    RefreshPosition();
}

void frmCoordinate::EnableFields() {
    for (QWidget* const field :
         std::initializer_list<QWidget*>{ui_->txtEasting, ui_->txtLonDecDeg, ui_->txtLonDeg, ui_->txtLonMin,
                                         ui_->txtLonSec, ui_->ddLonHemi})
        field->setEnabled(!LockX);
    for (QWidget* const field :
         std::initializer_list<QWidget*>{ui_->txtNorthing, ui_->txtLatDecDeg, ui_->txtLatDeg, ui_->txtLatMin,
                                         ui_->txtLatSec, ui_->ddLatHemi})
        field->setEnabled(!LockY);
}

void frmCoordinate::showEvent(QShowEvent* event) {
    WizardForm::showEvent(event);
    if (event->spontaneous())
        return;
    MoveAside();
    FocusFirstField();
}

void frmCoordinate::MoveAside() {
    if (!PlaceOnScreen)
        return;
    const QScreen* const on = QGuiApplication::screenAt(*PlaceOnScreen);
    const QWidget& behind = parentWidget() != nullptr ? *parentWidget()->window() : *this;
    // This form has no frame before it is on the screen: the window's will be as wide.
    const QSize frame = behind.frameGeometry().size() - behind.geometry().size();
    move(PlaceBeside(*PlaceOnScreen, size() + frame, behind.frameGeometry(),
                     (on != nullptr ? on : screen())->availableGeometry()));
}

void frmCoordinate::FocusFirstField() {
    // The coordinate is what has to be typed; the pixel is right as a rule.
    const std::array<QLineEdit*, 6> fields{ui_->txtLatDecDeg, ui_->txtLatDeg,  ui_->txtLonDecDeg,
                                           ui_->txtLonDeg,    ui_->txtEasting, ui_->txtNorthing};
    for (QLineEdit* const field : fields) {
        if (field->isVisible() && field->isEnabled()) {
            field->setFocus();
            return;
        }
    }
    ui_->bNext->setFocus();
}

void frmCoordinate::ShowFormat() {
    const bool dms = ui_->rbDMS->isChecked();
    for (QWidget* const field : std::initializer_list<QWidget*>{
             ui_->lDegL, ui_->lMinL, ui_->lSecL, ui_->txtLatDeg, ui_->txtLatMin, ui_->txtLatSec,
             ui_->ddLatHemi, ui_->txtLonDeg, ui_->txtLonMin, ui_->txtLonSec, ui_->ddLonHemi})
        field->setVisible(dms);
    ui_->txtLatDecDeg->setVisible(!dms);
    ui_->txtLonDecDeg->setVisible(!dms);
    ui_->Label7->setBuddy(dms ? ui_->txtLatDeg : ui_->txtLatDecDeg);
    ui_->Label8->setBuddy(dms ? ui_->txtLonDeg : ui_->txtLonDecDeg);
}

void frmCoordinate::RefreshPosition() {
    WriteAngle(checks_, FieldsOf(*ui_, true), position_.LatitudeParts(),
               position_.LatitudeHemisphere() == 'S');
    WriteAngle(checks_, FieldsOf(*ui_, false), position_.LongitudeParts(),
               position_.LongitudeHemisphere() == 'W');
    checks_.Write(*ui_->txtLatDecDeg, NumberText(position_.Latitude(), DegreeDecimals));
    checks_.Write(*ui_->txtLonDecDeg, NumberText(position_.Longitude(), DegreeDecimals));
}

void frmCoordinate::ShowMeters() {
    const std::string unit = ComboText(*ui_->ddUnit).toStdString();
    checks_.Write(*ui_->txtEasting, NumberText(MetersToUnit(Easting, unit), LengthDecimals));
    checks_.Write(*ui_->txtNorthing, NumberText(MetersToUnit(Northing, unit), LengthDecimals));
}

void frmCoordinate::rbDecDeg_Click() {
    if (!ui_->rbDecDeg->isChecked())
        return;
    degreeFormat_ = QStringLiteral("DecDeg");
    ShowFormat();
}

void frmCoordinate::rbDMS_Click() {
    if (!ui_->rbDMS->isChecked())
        return;
    degreeFormat_ = QStringLiteral("DMS");
    ShowFormat();
}

void frmCoordinate::ddLatHemi_Click() {
    position_.SetLatitudeHemisphere(ui_->ddLatHemi->currentIndex() == 0 ? 'N' : 'S');
    RefreshPosition();
}

void frmCoordinate::ddLonHemi_Click() {
    position_.SetLongitudeHemisphere(ui_->ddLonHemi->currentIndex() == 0 ? 'E' : 'W');
    RefreshPosition();
}

void frmCoordinate::ddUnit_Click() {
    try {
        ShowMeters();
    } catch (const ComponentError&) {
        // A length that is no number in this unit any more: the boxes stay as they are.
    }
}

void frmCoordinate::StoreParts(bool latitude) {
    const AngleFields fields = FieldsOf(*ui_, latitude);
    const double degrees = GetNumber(fields.degrees);
    const double minutes = GetNumber(fields.minutes);
    const double seconds = GetNumber(fields.seconds);
    const AngleParts shown =
        RoundSeconds(latitude ? position_.LatitudeParts() : position_.LongitudeParts(), SecondDecimals);
    // "34.0" for "34" is no other value: the seconds beyond the decimals shown stay.
    const bool changed = degrees != shown.degrees || minutes != shown.minutes || seconds != shown.seconds ||
                         std::signbit(degrees);
    const bool negative = fields.hemisphere.currentIndex() != 0;
    if (changed && latitude)
        position_.SetLatitudeParts(degrees, minutes, seconds, negative ? 'S' : 'N');
    else if (changed)
        position_.SetLongitudeParts(degrees, minutes, seconds, negative ? 'W' : 'E');
    RefreshPosition();
}

FieldChecks::Restore frmCoordinate::PasteLonLat(const QString& text, WrittenAs place) {
    const std::optional<LonLat> pasted = ParseLonLat(Pasted(text), DecimalSign(), place);
    if (!pasted)
        return {};
    const QuorvantPosition before = position_;
    if (!LockX)
        position_.SetLongitude(pasted->longitude);
    if (!LockY)
        position_.SetLatitude(pasted->latitude);
    RefreshPosition();
    return [this, before] {
        position_ = before;
        RefreshPosition();
    };
}

FieldChecks::Restore frmCoordinate::PasteEastNorth(const QString& text) {
    const std::optional<EastNorth> pasted = ParseEastNorth(Pasted(text), DecimalSign());
    if (!pasted)
        return {};
    const std::string unit = ComboText(*ui_->ddUnit).toStdString();
    const EastNorth before{Easting, Northing};
    const EastNorth meters{UnitToMeters(pasted->easting, unit), UnitToMeters(pasted->northing, unit)};
    if (!LockX)
        Easting = meters.easting;
    if (!LockY)
        Northing = meters.northing;
    ShowMeters();
    return [this, before] {
        Easting = before.easting;
        Northing = before.northing;
        ShowMeters();
    };
}

double frmCoordinate::Meters(const QLineEdit& field) const {
    return UnitToMeters(GetNumber(field), ComboText(*ui_->ddUnit).toStdString());
}

void frmCoordinate::bNext_Click() {
    if (!checks_.Settle())
        return;
    if (!UseGrid) {
        Latitude = position_.Latitude();
        Longitude = position_.Longitude();
    }
    const bool isNowhere = UseGrid ? Easting == 0 && Northing == 0 : Latitude == 0 && Longitude == 0;
    if (isNowhere) {
        ShowMessage(this, QStringLiteral("You must enter a geografic position!"));
        return;
    }
    if (UseGrid)
        unit_ = ComboText(*ui_->ddUnit);
    Confirm();
}
