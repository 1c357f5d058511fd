#pragma once

#include "cli/commands/CoordinateSystem.h"
#include "component/Worldfile.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// The scaling arguments as typed: a grid or a datum, and a worldfile, three points or four corners.
struct ScalingOptions {
    SystemOptions system;
    std::string worldfile;
    std::vector<std::string> points;
    std::vector<std::string> corners;

    bool Given() const { return system.Given() || !(worldfile.empty() && points.empty() && corners.empty()); }
};

/// A scaling that was checked as far as it can be without the map: names are known, the worldfile was read,
/// points span a triangle or corners a sheet.
class ScalingPlan {
public:
    /// Throws UsageError for arguments that contradict or lack each other, ComponentError for names that are
    /// unknown and for numbers that describe no scaling.
    explicit ScalingPlan(const ScalingOptions& options);

    /// Gives the map its datum, grid and scaling. `orientation` is the turn from the pixels as stored, which
    /// a worldfile counts, to the map's; points and corners count the map's own pixels. Throws OutsideArea
    /// when pixels of the map would lie beyond a pole; the map is then not to be saved.
    void ApplyTo(AtlavexMap& map, Orientation orientation = Orientation::TopLeft) const;

private:
    void ChoosePoints(const ScalingOptions& options);

    std::optional<CoordinateSystem> system_; ///< always there; known after the points are
    std::optional<Affine> worldfile_;
    std::vector<ReferencePoint> points_; ///< three points or four corners
};
