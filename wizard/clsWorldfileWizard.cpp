#include "wizard/clsWorldfileWizard.h"

#include "base/ComponentError.h"
#include "component/Worldfile.h"
#include "wizard/ScaleHandover.h"
#include "wizard/WizardMessages.h"
#include "wizard/frmSelectWorldfileGrid.h"

#include <QFile>

#include <cmath>

namespace {

/// The worldfile's three points. Throws before anything reaches the map.
std::array<ReferencePoint, 3> PointsOf(const QString& worldfilePath, const AtlavexMap& map,
                                       Orientation orientation) {
    const Affine stored = ReadWorldfile(QFile::encodeName(worldfilePath).toStdString());
    const auto points = WorldfilePoints(TurnWorldfile(stored, orientation, map.Width(), map.Height()));
    for (const ReferencePoint& point : points) {
        if (!std::isfinite(point.x) || !std::isfinite(point.y))
            throw ComponentError(ErrorNumber::ValueNotFinite, "The worldfile's numbers are too large.");
    }
    return points;
}

} // namespace

bool clsWorldfileWizard::DoSelectDatumGrid(AtlavexMap& map, const QString& worldfilePath,
                                           Orientation orientation) {
    frmSelectWorldfileGrid form(parent_);
    if (!form.ShowModal()) {
        ShowWizardCancelled(parent_);
        return false;
    }
    return RunHandOver(parent_, map, [&] {
        const auto points = PointsOf(worldfilePath, map, orientation);
        HandOverGrid(map, form.GridIdentifier(), form.Zone(), form.Grid());
        map.SetScalingThreePoints(points[0], points[1], points[2]);
    });
}
