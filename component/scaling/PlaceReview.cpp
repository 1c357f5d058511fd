#include "component/scaling/PlaceReview.h"

#include "base/ComponentError.h"
#include "coordinates/CrsText.h"

#include <cmath>
#include <limits>
#include <memory>

namespace {

constexpr double FarKilometres = 700;
constexpr double FewKilometres = 100;
/// An area of more degrees from south to north, as that of a zone from the equator to the pole, says little
/// of the unit.
constexpr double HighArea = 20;
constexpr double MetresPerFoot = 0.3048;
/// What grids of the southern hemisphere add to their northings.
constexpr double SouthernNorthing = 1e7;
constexpr double HalfZone = 3;

constexpr double Nowhere = std::numeric_limits<double>::infinity();

/// Where a system without a code is used: about its central meridian.
std::optional<LonLatBox> AreaByNumbers(const std::optional<GridNumbers>& grid) {
    constexpr LonLatBox Denmark{7.9, 54.4, 15.3, 57.9};
    if (!grid)
        return std::nullopt;
    if (grid->method == static_cast<std::int32_t>(ProjectionMethod::DanishSystem34))
        return Denmark;
    return LonLatBox{grid->values[1] - HalfZone, -90, grid->values[1] + HalfZone, 90};
}

/// AGD84 was adopted by some of Australia's states only, but is offered for all of them: the area is that of
/// GDA94.
int CodeOfArea(int epsg) {
    constexpr int Agd84 = 4203, Gda94 = 4283, AmgZone0 = 20300, MgaZone0 = 28300, FirstZone = 49,
                  LastZone = 56;
    if (epsg == Agd84)
        return Gda94;
    const bool isAmg = epsg >= AmgZone0 + FirstZone && epsg <= AmgZone0 + LastZone;
    return isAmg ? epsg - AmgZone0 + MgaZone0 : epsg;
}

std::optional<LonLatBox> AreaOf(const Georeference& georeference) {
    if (!georeference.datum && !georeference.grid)
        return std::nullopt;
    const CrsText system = DescribeCrs(georeference.datum.value_or(QuorvantDatum()), georeference.grid,
                                       georeference.gridIdentifier);
    const auto area = system.epsg != 0 ? AreaOfUse(CodeOfArea(system.epsg)) : std::nullopt;
    return area ? area : AreaByNumbers(georeference.grid);
}

std::function<LonLat(const WorldPosition&)> DegreesOf(const Georeference& georeference) {
    if (!georeference.grid)
        return [](const WorldPosition& world) { return LonLat{world.x, world.y}; };
    const auto projection =
        std::make_shared<GridProjection>(*georeference.grid, georeference.datum.value_or(QuorvantDatum()));
    return [projection](const WorldPosition& world) { return projection->Inverse({world.x, world.y}); };
}

WorldPosition Times(const WorldPosition& world, double factor) {
    return {world.x * factor, world.y * factor};
}

/// "48.1° north, 9.2° east": fit to be found on a globe.
std::string PlaceText(const LonLat& place) {
    const auto degrees = [](double value, const char* positive, const char* negative) {
        const auto tenths = static_cast<long>(std::lround(std::abs(value) * 10));
        return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + "° " +
               (value < 0 ? negative : positive);
    };
    return degrees(place.latitude, "north", "south") + ", " + degrees(place.longitude, "east", "west");
}

} // namespace

PlaceReview::PlaceReview(const Georeference& georeference, const WorldPosition& middle)
    : georeference_(georeference), middle_(middle), area_(AreaOf(georeference)),
      toDegrees_(DegreesOf(georeference)), beyond_(Beyond(middle)) {}

std::optional<LonLat> PlaceReview::PlaceOf(const WorldPosition& world) const {
    try {
        const LonLat place = toDegrees_(world);
        const bool isOnEarth = std::abs(place.latitude) <= 90 && std::abs(place.longitude) <= 360;
        return isOnEarth ? std::optional(place) : std::nullopt;
    } catch (const ComponentError&) {
        return std::nullopt; // the grid is not defined there
    }
}

double PlaceReview::Beyond(const WorldPosition& world) const {
    const auto place = PlaceOf(world);
    if (!place)
        return Nowhere;
    return area_ ? KilometresBeyond(*area_, *place) : 0;
}

std::optional<bool> PlaceReview::SaysSwapped() const {
    const double swapped = Beyond({middle_.y, middle_.x});
    if (beyond_ == 0 && swapped > FarKilometres)
        return false;
    if (beyond_ > FarKilometres && swapped == 0)
        return true;
    return std::nullopt;
}

std::optional<ScalingRemark> PlaceReview::Remark() const {
    if (auto unit = UnitRemark())
        return unit;
    if (beyond_ <= FarKilometres)
        return std::nullopt;
    if (auto hemisphere = HemisphereRemark())
        return hemisphere;
    return FarRemark();
}

double PlaceReview::LeastForUnit() const {
    const bool isSmall = area_ && area_->north - area_->south < HighArea;
    return isSmall ? FewKilometres : FarKilometres;
}

std::optional<ScalingRemark> PlaceReview::UnitRemark() const {
    if (!georeference_.grid || beyond_ <= LeastForUnit())
        return std::nullopt;
    if (WouldFit(Times(middle_, MetresPerFoot)))
        return ScalingRemark{
            ScalingDoubt::FeetForMetres,
            "The coordinates look like feet that were given as metres: taken as feet they lie in "
            "the area of the grid, as metres they do not."};
    if (WouldFit(Times(middle_, 1 / MetresPerFoot)))
        return ScalingRemark{
            ScalingDoubt::MetresForFeet,
            "The coordinates look like metres that were given as feet: without the conversion they "
            "lie in the area of the grid, with it they do not."};
    return std::nullopt;
}

std::optional<ScalingRemark> PlaceReview::HemisphereRemark() const {
    const auto remark = [](const std::string& what) {
        return ScalingRemark{ScalingDoubt::Hemisphere, "The map lies in the wrong hemisphere: " + what +
                                                           " it would lie in the area of its system."};
    };
    if (georeference_.grid) {
        if (WouldFit({middle_.x, middle_.y + SouthernNorthing}) ||
            WouldFit({middle_.x, middle_.y - SouthernNorthing}))
            return remark("with the grid of the other one, or with northings 10,000,000 m apart,");
        return std::nullopt;
    }
    if (WouldFit({-middle_.x, middle_.y}))
        return remark("with the other sign of the longitude");
    if (WouldFit({middle_.x, -middle_.y}))
        return remark("with the other sign of the latitude");
    if (WouldFit({-middle_.x, -middle_.y}))
        return remark("with the other sign of longitude and latitude");
    return std::nullopt;
}

ScalingRemark PlaceReview::FarRemark() const {
    const auto place = PlaceOf(middle_);
    const std::string system = georeference_.grid ? "the grid" : "the datum";
    if (!place)
        return {ScalingDoubt::FarAway,
                "The middle of the map lies where " +
                    (georeference_.grid ? system + " is not defined." : "no place on earth is.")};
    return {ScalingDoubt::FarAway, "The middle of the map lies at " + PlaceText(*place) + ", " +
                                       std::to_string(std::lround(beyond_)) + " km from where " + system +
                                       " is used: another zone, system or order of the axes may be meant."};
}
