#include "base/ComponentError.h"
#include "coordinates/EarthPosition.h"
#include "coordinates/ProjTransform.h"
#include "coordinates/Projection.h"
#include "coordinates/ProjectionText.h"

#include <cmath>

namespace {

/// The convention is the one of the nine numbers; without it PROJ refuses rotations.
std::string PipelineText(const QuorvantDatum& datum) {
    return "+proj=pipeline +step +proj=unitconvert +xy_in=deg +xy_out=rad"
           " +step +proj=cart" +
           EllipsoidText(datum) + " +step +proj=helmert" + ProjParameter("x", datum.DeltaX()) +
           ProjParameter("y", datum.DeltaY()) + ProjParameter("z", datum.DeltaZ()) +
           ProjParameter("rx", datum.RotX()) + ProjParameter("ry", datum.RotY()) +
           ProjParameter("rz", datum.RotZ()) + ProjParameter("s", datum.ScaleFactor()) +
           " +convention=position_vector +step +inv +proj=cart +ellps=WGS84"
           " +step +proj=unitconvert +xy_in=rad +xy_out=deg";
}

LonLat Checked(const ProjPair& result) {
    if (!std::isfinite(result.first) || !std::isfinite(result.second))
        throw ComponentError(ErrorNumber::OutsideArea, "The datum is not defined at this position.");
    return {result.first, result.second};
}

} // namespace

struct DatumShift::State {
    ProjTransform transform;
};

DatumShift::DatumShift(const QuorvantDatum& datum) {
    RequireUsable(datum);
    state_ = std::make_unique<State>(State{ProjTransform(PipelineText(datum))});
    if (state_->transform.Empty())
        throw ComponentError(ErrorNumber::UnknownDatum, "The numbers of the datum describe no shift.");
}

DatumShift::~DatumShift() = default;
DatumShift::DatumShift(DatumShift&&) noexcept = default;
DatumShift& DatumShift::operator=(DatumShift&&) noexcept = default;

LonLat DatumShift::ToWgs84(const LonLat& position) const {
    RequireOnEarth(position);
    return Checked(state_->transform.Forward({position.longitude, position.latitude}));
}

LonLat DatumShift::FromWgs84(const LonLat& position) const {
    RequireOnEarth(position);
    return Checked(state_->transform.Inverse({position.longitude, position.latitude}));
}
