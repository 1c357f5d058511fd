#include "cli/commands/ScalingOptions.h"

#include "base/NumberText.h"
#include "cli/input/Arguments.h"
#include "cli/output/ExitStatus.h"
#include "cli/output/Output.h"
#include "component/Worldfile.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace {

constexpr std::size_t PointCount = 3;
constexpr std::size_t CornerCount = 4;

void CheckSourceChoice(const ScalingOptions& options) {
    const int sources = (options.worldfile.empty() ? 0 : 1) + (options.points.empty() ? 0 : 1) +
                        (options.corners.empty() ? 0 : 1);
    if (sources != 1)
        throw UsageError("A scaling needs one of --worldfile, three --point or four --corner.");
    if (!options.points.empty() && options.points.size() < PointCount)
        throw UsageError("A scaling needs --point three times or more, not " +
                         std::to_string(options.points.size()) + ".");
    if (!options.corners.empty() && options.corners.size() != CornerCount)
        throw UsageError("A scaling needs --corner four times, not " +
                         std::to_string(options.corners.size()) + ".");
}

std::vector<ReferencePoint> ParsePoints(std::string_view option, const std::vector<std::string>& texts,
                                        const PlaceForm& form) {
    std::vector<ReferencePoint> points;
    std::transform(texts.begin(), texts.end(), std::back_inserter(points),
                   [&](const std::string& text) { return ParseReferencePoint(option, text, form); });
    return points;
}

std::vector<MeasuredPoint> ParseMeasured(std::string_view option, const std::vector<std::string>& texts,
                                         const PlaceForm& form) {
    std::vector<MeasuredPoint> points;
    std::transform(texts.begin(), texts.end(), std::back_inserter(points),
                   [&](const std::string& text) { return ParseMeasuredPoint(option, text, form); });
    return points;
}

/// A worldfile says no unit, and what others made it with cannot be known from its numbers.
PlaceForm FormOf(const ScalingOptions& options) {
    const PlaceForm lengths = LengthsIn(options.unit);
    if (!options.unit.empty() && options.system.grid.empty())
        throw UsageError("--unit is for eastings and northings on a --grid.");
    if (!options.unit.empty() && !options.worldfile.empty())
        throw UsageError("--unit is for --point, --corner and --check; a worldfile is in metres.");
    return options.system.grid.empty() ? Degrees() : lengths;
}

/// What rounding may add to a pole that is a point's own latitude.
constexpr double RoundingDegrees = 1e-9;

/// Places looked at along each side of the map; the arcs of a polar one bend in between by less than matters.
constexpr int Places = 33;

void RequireOnEarth(const WorldPosition& world, const std::string& where) {
    const bool latitude = std::abs(world.y) > 90 + RoundingDegrees;
    if (!latitude && std::abs(world.x) <= 360 + RoundingDegrees)
        return;
    throw ComponentError(ErrorNumber::OutsideArea,
                         where + " would have the " + (latitude ? "latitude " : "longitude ") +
                             NumberToText(latitude ? world.y : world.x) + ", which is not within " +
                             (latitude ? "±90" : "±360") + " degrees.");
}

template <typename Point>
void RequirePointsOnEarth(const std::vector<Point>& points, const std::string& kind) {
    int number = 0;
    for (const Point& point : points)
        RequireOnEarth({point.x, point.y}, kind + " " + std::to_string(++number));
}

void RequirePixelOnEarth(const AtlavexMap& map, const PixelPosition& pixel) {
    const WorldPosition world = map.PixelToWorld(pixel);
    // The middle of a sheet whose meridians meet on it has no coordinate, and does no harm.
    if (std::isfinite(world.x) && std::isfinite(world.y))
        RequireOnEarth(world,
                       "The pixel " + NumberToText(pixel.x) + "," + NumberToText(pixel.y) + " of the map");
}

/// In degrees a map ends at the poles: what lies beyond could be stored, but not be located.
void RequireOnEarth(const AtlavexMap& map) {
    if (map.HasGrid())
        return;
    const double right = map.Width() - 1, bottom = map.Height() - 1;
    for (int i = 0; i < Places; ++i) {
        const double x = std::round(right * i / (Places - 1)), y = std::round(bottom * i / (Places - 1));
        for (const PixelPosition& pixel : {PixelPosition{x, 0}, {x, bottom}, {0, y}, {right, y}})
            RequirePixelOnEarth(map, pixel);
    }
}

} // namespace

ScalingPlan::ScalingPlan(const ScalingOptions& options) {
    CheckSystemChoice(options.system, "A scaling");
    CheckSourceChoice(options);
    const PlaceForm form = FormOf(options);
    ChoosePoints(options, form);
    checks_ = ParseMeasured("--check", options.checks, form);
    ChooseBound(options);
    system_.emplace(options.system);
    if (!system_->HasGrid())
        RequireOnEarth();
}

void ScalingPlan::RequireOnEarth() const {
    // Fitted ones only stand for those that were given.
    if (fitted_.empty())
        RequirePointsOnEarth(points_, "Point");
    RequirePointsOnEarth(fitted_, "Point");
    RequirePointsOnEarth(checks_, "Check");
}

void ScalingPlan::ChooseBound(const ScalingOptions& options) {
    if (options.maxResidual.empty())
        return;
    if (fitted_.empty() && checks_.empty())
        throw UsageError("--max-residual needs more than three --point, or --check.");
    maxResidual_ = ParseNumber("--max-residual", options.maxResidual);
    if (*maxResidual_ < 0)
        throw UsageError("--max-residual: a point is not less than 0 pixels off.");
}

void ScalingPlan::ChoosePoints(const ScalingOptions& options, const PlaceForm& form) {
    if (options.points.size() > PointCount) {
        fitted_ = ParseMeasured("--point", options.points, form);
        const auto points = FitAffine(fitted_);
        points_.assign(points.begin(), points.end());
    } else if (!options.points.empty()) {
        points_ = ParsePoints("--point", options.points, form);
        CheckScaling(ScalingKind::Linear, points_);
    } else if (!options.corners.empty()) {
        points_ = ParsePoints("--corner", options.corners, form);
        CheckScaling(ScalingKind::Polar, points_);
    } else {
        worldfile_ = ReadWorldfile(options.worldfile);
        CheckScaling(ScalingKind::Linear, WorldfilePoints(*worldfile_));
    }
}

void ScalingPlan::ApplyTo(AtlavexMap& map, Orientation orientation) const {
    system_->ApplyTo(map);
    map.SetEnteredPoints(fitted_);
    if (!checks_.empty())
        map.SetCheckSets({{"", checks_}});
    if (points_.size() == CornerCount) {
        map.SetScalingCorners(points_[0], points_[1], points_[2], points_[3]);
    } else if (worldfile_) {
        const auto points =
            WorldfilePoints(TurnWorldfile(*worldfile_, orientation, map.Width(), map.Height()));
        map.SetScalingThreePoints(points[0], points[1], points[2]);
    } else {
        map.SetScalingThreePoints(points_[0], points_[1], points_[2]);
    }
    ::RequireOnEarth(map);
}

FitReport ScalingPlan::ReportOf(const AtlavexMap& map) const {
    return {map.MapGeoreference(), fitted_, checks_};
}

void ScalingPlan::RequireWithinBound(const FitReport& report) const {
    if (!maxResidual_)
        return;
    for (const auto& [kind, points] : {std::pair("Point", &report.points), {"Check", &report.checks}})
        for (const ComparedPoint& point : *points)
            if (!(point.residual.pixels <= *maxResidual_))
                throw CommandFailure(ExitStatus::Failed,
                                     NameOfPoint(kind, point) + " is " + ResidualText(point.residual.pixels) +
                                         " pixels off, more than --max-residual " +
                                         CoordinateText(*maxResidual_) + "; nothing was written.");
}
