#pragma once

#include "component/ScalingReview.h"
#include "coordinates/AreaOfUse.h"

#include <functional>
#include <optional>

/// Where a map lies on the earth, compared with where its grid or datum is used.
class PlaceReview {
public:
    /// `middle` is a coordinate in the midst of the map.
    PlaceReview(const Georeference& georeference, const WorldPosition& middle);

    /// Whether the area says that the two axes were exchanged, or that they were not; nothing where it does
    /// not tell.
    std::optional<bool> SaysSwapped() const;
    /// What is unlikely about the place, if anything.
    std::optional<ScalingRemark> Remark() const;

private:
    /// Kilometres beyond the area; infinite where the system is not defined at all.
    double Beyond(const WorldPosition& world) const;
    std::optional<LonLat> PlaceOf(const WorldPosition& world) const;
    bool WouldFit(const WorldPosition& world) const { return Beyond(world) == 0; }
    double LeastForUnit() const;
    std::optional<ScalingRemark> UnitRemark() const;
    std::optional<ScalingRemark> HemisphereRemark() const;
    ScalingRemark FarRemark() const;

    const Georeference& georeference_;
    WorldPosition middle_;
    std::optional<LonLatBox> area_;
    std::function<LonLat(const WorldPosition&)> toDegrees_; ///< on the own datum
    double beyond_ = 0;
};
