#pragma once

#include "cli/commands/CoordinateSystem.h"
#include "cli/input/Places.h"
#include "cli/output/FitReport.h"
#include "component/Worldfile.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// The scaling arguments as typed: a grid or a datum, and a worldfile, three or more points or four corners;
/// points to check it, and how far any may be off.
struct ScalingOptions {
    SystemOptions system;
    std::string unit; ///< of the coordinates on a grid; metres when empty
    std::string worldfile;
    std::vector<std::string> points;
    std::vector<std::string> corners;
    std::vector<std::string> checks;
    std::string maxResidual;
    bool json = false;

    bool Given() const {
        return system.Given() || json ||
               !(unit.empty() && worldfile.empty() && points.empty() && corners.empty() && checks.empty() &&
                 maxResidual.empty());
    }
};

/// A scaling that was checked as far as it can be without the map: names are known, the worldfile was read,
/// points span a triangle or corners a sheet.
class ScalingPlan {
public:
    /// Throws UsageError for arguments that contradict or lack each other, ComponentError for names that are
    /// unknown and for numbers that describe no scaling.
    explicit ScalingPlan(const ScalingOptions& options);

    /// Gives the map its datum, grid and scaling, and what that was made from or is compared with where the
    /// three points or four corners do not say it. `orientation` is the turn from the pixels as stored, which
    /// a worldfile counts, to the map's; points and corners count the map's own pixels. Throws OutsideArea
    /// when pixels of the map would lie beyond a pole; the map is then not to be saved.
    void ApplyTo(AtlavexMap& map, Orientation orientation = Orientation::TopLeft) const;

    /// What the map's scaling makes of the points that it was fitted to and of the check points.
    FitReport ReportOf(const AtlavexMap& map) const;
    /// Throws CommandFailure for a point that is farther off than it may be; the map is then not to be saved.
    void RequireWithinBound(const FitReport& report) const;

private:
    void ChoosePoints(const ScalingOptions& options, const PlaceForm& form);
    void ChooseBound(const ScalingOptions& options);
    void RequireOnEarth() const;

    std::optional<CoordinateSystem> system_; ///< always there; known after the points are
    std::optional<Affine> worldfile_;
    std::vector<ReferencePoint> points_; ///< three points or four corners
    std::vector<MeasuredPoint> fitted_;  ///< more than three points, to which those three are fitted
    std::vector<MeasuredPoint> checks_;
    std::optional<double> maxResidual_; ///< pixels
};
