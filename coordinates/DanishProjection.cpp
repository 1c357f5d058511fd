#include "coordinates/DanishProjection.h"

#include "base/ComponentError.h"
#include "coordinates/DatumTable.h"
#include "coordinates/GridBuilders.h"

#include <string>

namespace {

constexpr GridNumbers Utm32 = TransverseMercatorGrid(32, 0, 9, 0.9996, 500000, 0);
/// EPSG conversion 10159 "S34 reconstruction", with easting = -y.
constexpr GridNumbers Reconstruction = TransverseMercatorGrid(0, 0, 10.37, 1, -210327, -6034310);

const QuorvantDatum& Td32() {
    static const QuorvantDatum datum(DanishTd32Numbers);
    return datum;
}

std::optional<DanishSystem> SystemOf(std::int32_t zone) {
    if (zone < 0 || zone > static_cast<std::int32_t>(DanishSystem::Bornholm))
        throw ComponentError(ErrorNumber::UnknownZone,
                             "The Danish grids have no zone " + std::to_string(zone) + ".");
    return zone == 0 ? std::nullopt : std::optional(static_cast<DanishSystem>(zone));
}

DanishSystem Chosen(const LonLat& position) {
    const auto system = ChooseSystem34(position);
    if (!system)
        throw ComponentError(ErrorNumber::OutsideArea, "System 34 does not reach east of 13.5 degrees.");
    return *system;
}

} // namespace

DanishProjection::DanishProjection(std::int32_t zone)
    : system_(SystemOf(zone)), utm32_(Utm32, Td32()), approximate_(Reconstruction, Td32()) {}

EastNorth DanishProjection::Forward(const LonLat& position) const {
    const DanishSystem system = system_ ? *system_ : Chosen(position);
    return DanishFromUtm32(system, utm32_.Forward(position));
}

LonLat DanishProjection::Inverse(const EastNorth& position) const {
    if (system_)
        return InverseIn(*system_, position);
    const DanishSystem near = SystemNear(position);
    const LonLat answer = InverseIn(near, position);
    // Within some metres of the line the approximate position may lie on its wrong side.
    const DanishSystem exact = Chosen(answer);
    if (exact == near)
        return answer;
    const LonLat other = InverseIn(exact, position);
    return Chosen(other) == exact ? other : answer;
}

LonLat DanishProjection::InverseIn(DanishSystem system, const EastNorth& position) const {
    return utm32_.Inverse(DanishToUtm32(system, position));
}

/// The inverse of one system cannot tell: in eastern Zealand that of Jutland is over 1 km off.
DanishSystem DanishProjection::SystemNear(const EastNorth& position) const {
    return Chosen(approximate_.Inverse({-position.easting, position.northing}));
}
