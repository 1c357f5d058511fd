#pragma once

#include "coordinates/DanishSystem34.h"
#include "coordinates/PlaneProjection.h"

#include <optional>

/// System 34 and System 45 between longitude/latitude on International 1924 and the printed coordinates.
class DanishProjection {
public:
    /// The zone of GridNumbers: 0 chooses between Jutland and Zealand by position, 1 to 3 name a system.
    /// UnknownZone for any other.
    explicit DanishProjection(std::int32_t zone);

    /// Both throw OutsideArea.
    EastNorth Forward(const LonLat& position) const;
    LonLat Inverse(const EastNorth& position) const;

private:
    LonLat InverseIn(DanishSystem system, const EastNorth& position) const;
    DanishSystem SystemNear(const EastNorth& position) const;

    std::optional<DanishSystem> system_; ///< empty: by position
    PlaneProjection utm32_;
    PlaneProjection approximate_; ///< closed formula within some 35 m of System 34
};
