#include "wizard/clsScalingWizard.h"

#include "base/CheckedNumbers.h"
#include "wizard/Projections.h"
#include "wizard/WizardMessages.h"
#include "wizard/frmCoordinate.h"
#include "wizard/frmInfo.h"
#include "wizard/frmProjection.h"
#include "wizard/frmSelectDatumGrid.h"

#include <array>

clsScalingWizard::clsScalingWizard(QWidget* parent) : parent_(parent) {}

clsScalingWizard::~clsScalingWizard() = default;

bool clsScalingWizard::DoSelectDatumGrid() {
    frmSelectDatumGrid selection(parent_);
    if (!selection.ShowModal()) {
        ShowWizardCancelled(parent_);
        return false;
    }
    KeepSystem(selection);
    frmProjection projection(parent_);
    if (!projection.ShowModal()) {
        ShowWizardCancelled(parent_);
        return false;
    }
    projection_ = projection.Projection();
    if (projection_ == PolarProjection)
        frmInfo(parent_).ShowModal();
    coordinateCount_ = PointsFor(projection_);
    PrepareCoordinateForm();
    return true;
}

void clsScalingWizard::KeepSystem(const frmSelectDatumGrid& form) {
    useLonLat_ = form.UseLonLat();
    useGrid_ = form.UseGrid();
    gridIdentifier_ = form.GridIdentifier();
    zone_ = form.Zone();
    datum_ = form.Datum();
    grid_ = datum_ ? std::nullopt : form.Grid();
}

void clsScalingWizard::PrepareCoordinateForm() {
    coordinateIndex_ = 1;
    coordinateForm_ = std::make_unique<frmCoordinate>(parent_);
    coordinateForm_->UseLonLat = useLonLat_;
    coordinateForm_->UseGrid = useGrid_;
    coordinateForm_->Zone = zone_;
    coordinateForm_->ProjectionType = projection_;
}

bool clsScalingWizard::DoDefineCoordinate(std::int32_t pixelX, std::int32_t pixelY,
                                          const std::optional<QPoint>& onScreen) {
    HandPointToForm(pixelX, pixelY);
    coordinateForm_->PlaceOnScreen = onScreen;
    if (projection_ == PolarProjection)
        FillInCorner();
    if (!coordinateForm_->ShowModal()) {
        ShowWizardCancelled(parent_);
        return false;
    }
    KeepPoint();
    if (coordinateIndex_ == coordinateCount_)
        finished_ = true;
    else
        coordinateIndex_ = CheckedAdd<std::int16_t>(coordinateIndex_, 1);
    return true;
}

void clsScalingWizard::HandPointToForm(std::int32_t pixelX, std::int32_t pixelY) {
    frmCoordinate& form = *coordinateForm_;
    form.CoordinateNumber = coordinateIndex_;
    form.PixelX = pixelX;
    form.PixelY = pixelY;
    form.Latitude = 0;
    form.Longitude = 0;
    form.Easting = 0;
    form.Northing = 0;
    form.LockX = false;
    form.LockY = false;
}

void clsScalingWizard::FillInCorner() {
    // Corners on one meridian share X (1 and 2, 3 and 4), corners on one parallel share Y (1 and 3, 2 and 4).
    frmCoordinate& form = *coordinateForm_;
    form.LockX = coordinateIndex_ == 2 || coordinateIndex_ == 4;
    form.LockY = coordinateIndex_ == 3 || coordinateIndex_ == 4;
    const double x = form.LockX ? points_.x.at(coordinateIndex_ == 2 ? 1 : 3) : 0;
    const double y = form.LockY ? points_.y.at(coordinateIndex_ == 3 ? 1 : 2) : 0;
    if (useLonLat_) {
        form.Longitude = x;
        form.Latitude = y;
    } else if (useGrid_) {
        form.Easting = x;
        form.Northing = y;
    }
}

void clsScalingWizard::KeepPoint() {
    const frmCoordinate& form = *coordinateForm_;
    const auto place = CheckedNarrow<std::size_t>(coordinateIndex_);
    points_.x.at(place) = useLonLat_ ? form.Longitude : form.Easting;
    points_.y.at(place) = useLonLat_ ? form.Latitude : form.Northing;
    points_.pixelX.at(place) = form.PixelX;
    points_.pixelY.at(place) = form.PixelY;
}

void clsScalingWizard::ScaleMap(AtlavexMap* map) {
    if (map == nullptr)
        throw ComponentError(ErrorNumber::NoSuchMap, "There is no map to be scaled.");
    RunHandOver(parent_, *map, [this, map] {
        if (datum_)
            HandOverDatum(*map, *datum_);
        if (grid_)
            HandOverGrid(*map, gridIdentifier_, zone_, *grid_);
        HandOverPoints(*map, projection_, points_);
    });
}

QString clsScalingWizard::Prompt() const {
    static constexpr std::array<const char*, 4> corners{"upper left coordinate", "lower left coordinate",
                                                        "upper right coordinate", "lower right coordinate"};
    if (projection_ != CartesianProjection && projection_ != PolarProjection)
        return {};
    const auto step =
        CheckedAdd<std::int16_t>(CheckedAdd<std::int16_t>(coordinateIndex_, coordinateIndex_), 1);
    const char* const place = projection_ == CartesianProjection
                                  ? "a known coordinate"
                                  : corners.at(CheckedNarrow<std::size_t>(coordinateIndex_ - 1));
    return QStringLiteral("Wizard step %1: Click on %2").arg(step).arg(QLatin1String(place));
}

std::vector<ReferencePoint> clsScalingWizard::GivenPoints() const {
    std::vector<ReferencePoint> given;
    const int count = finished_ ? coordinateCount_ : coordinateIndex_ - 1;
    for (std::int16_t number = 1; number <= count; ++number)
        given.push_back(points_.At(number));
    return given;
}
