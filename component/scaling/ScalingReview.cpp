#include "component/ScalingReview.h"

#include "component/scaling/PlaceReview.h"
#include "component/scaling/Scaling.h"
#include "component/scaling/ScalingChecks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>

namespace {

constexpr double MostRatioOfGrid = 1.1;
constexpr double MostRatioInDegrees = 1.25;
constexpr double MostShearOfGrid = 3; ///< degrees
constexpr double MostShearInDegrees = 10;
constexpr double LeastSpread = 0.1;
constexpr double LeastHeight = 0.05;
constexpr double SteepestLatitude = 85;

/// The steps on the ground from one pixel to the next, rightwards and downwards; eastwards and northwards.
struct Steps {
    Vector right;
    Vector down;

    bool AreUsable() const {
        return std::isfinite(right.x + right.y + down.x + down.y) && Length(right) > 0 && Length(down) > 0;
    }
    bool AreMirrored() const { return right.x * down.y - right.y * down.x > 0; }
    bool AreTransposed() const {
        return std::abs(right.y) + std::abs(down.x) > std::abs(right.x) + std::abs(down.y);
    }
    double Ratio() const {
        const double ratio = Length(right) / Length(down);
        return std::max(ratio, 1 / ratio);
    }
    /// Degrees by which they miss the right angle.
    double Shear() const {
        const double cosine = (right.x * down.x + right.y * down.y) / (Length(right) * Length(down));
        return std::abs(std::asin(std::clamp(cosine, -1.0, 1.0))) * 180 / std::numbers::pi;
    }
};

Steps StepsAt(const Scaling& scaling, const PixelPosition& pixel) {
    const auto between = [&](double dx, double dy) {
        const WorldPosition before = scaling.PixelToWorld({pixel.x - dx, pixel.y - dy});
        const WorldPosition after = scaling.PixelToWorld({pixel.x + dx, pixel.y + dy});
        return Vector{(after.x - before.x) / 2, (after.y - before.y) / 2};
    };
    return {between(1, 0), between(0, 1)};
}

/// Degrees of longitude made `factor` times as long.
Steps Narrowed(const Steps& steps, double factor) {
    return {{steps.right.x * factor, steps.right.y}, {steps.down.x * factor, steps.down.y}};
}

/// Maps in degrees are drawn with a degree of longitude as long as on the ground, or as long as one of
/// latitude, or in between: the one with which pixels are nearest to squares is taken.
Steps AsDrawn(const Steps& degrees, double latitude) {
    constexpr int Tries = 16;
    const double narrowest =
        std::cos(std::min(std::abs(latitude), SteepestLatitude) * std::numbers::pi / 180);
    Steps best = degrees;
    double least = std::numeric_limits<double>::infinity();
    for (int i = 0; i <= Tries; ++i) {
        const Steps drawn = Narrowed(degrees, std::pow(narrowest, static_cast<double>(i) / Tries));
        const double distortion = std::log(drawn.Ratio()) + drawn.Shear() * std::numbers::pi / 180;
        if (distortion < least) {
            least = distortion;
            best = drawn;
        }
    }
    return best;
}

/// Eastings of the Danish systems grow to the west.
bool GrowsWestwards(const Georeference& georeference) {
    return georeference.grid &&
           georeference.grid->method == static_cast<std::int32_t>(ProjectionMethod::DanishSystem34);
}

PixelPosition MiddleOf(const std::vector<ReferencePoint>& points) {
    PixelPosition middle;
    for (const ReferencePoint& point : points) {
        middle.x += point.pixelX / static_cast<double>(points.size());
        middle.y += point.pixelY / static_cast<double>(points.size());
    }
    return middle;
}

/// A number with one digit behind the point.
std::string Tenths(double value) {
    const auto tenths = std::llround(value * 10);
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10);
}

/// Looks at one scaling from every side.
class Review {
public:
    Review(const Georeference& georeference, std::int32_t width, std::int32_t height)
        : georeference_(georeference), width_(width), height_(height), scaling_(MakeScaling(georeference)),
          middle_(MiddleOf(georeference.points)), steps_(StepsAt(*scaling_, middle_)) {
        if (GrowsWestwards(georeference))
            steps_ = Narrowed(steps_, -1);
    }

    std::vector<ScalingRemark> Remarks() {
        if (steps_.AreUsable()) {
            LookAtPlace();
            LookAtShape();
        }
        LookAtPoints();
        return std::move(remarks_);
    }

private:
    void Say(ScalingDoubt doubt, const std::string& sentence) {
        ScalingRemark& remark = remarks_.emplace_back();
        remark.doubt = doubt;
        remark.sentence = sentence;
    }

    void LookAtPlace() {
        const PlaceReview place(georeference_, scaling_->PixelToWorld(middle_));
        const bool mirrored = steps_.AreMirrored();
        // Exchanged axes turn a map onto its back and by a quarter.
        if (mirrored && place.SaysSwapped().value_or(steps_.AreTransposed())) {
            Say(ScalingDoubt::SwappedAxes,
                georeference_.grid
                    ? "Easting and northing look exchanged: as they are the map is mirrored."
                    : "Longitude and latitude look exchanged: as they are the map is mirrored.");
            return;
        }
        if (mirrored)
            Say(ScalingDoubt::Mirrored,
                "The map is mirrored: with north up its right side lies in the west. Two of "
                "the points may be exchanged.");
        if (const auto remark = place.Remark())
            remarks_.push_back(*remark);
    }

    void LookAtShape() {
        const bool degrees = !georeference_.grid;
        const Steps drawn = degrees ? AsDrawn(steps_, scaling_->PixelToWorld(middle_).y) : steps_;
        if (drawn.Ratio() > (degrees ? MostRatioInDegrees : MostRatioOfGrid))
            Say(ScalingDoubt::ScaleRatio, "A pixel of the map covers " + Tenths(drawn.Ratio()) +
                                              " times as much ground one way as the other.");
        if (drawn.Shear() > (degrees ? MostShearInDegrees : MostShearOfGrid))
            Say(ScalingDoubt::Shear, "Rows and columns of the map miss the right angle on the ground by " +
                                         Tenths(drawn.Shear()) + " degrees.");
    }

    /// The points that WorldfilePoints gives are computed, not found on the map.
    bool AreOfWorldfile() const {
        constexpr std::array<std::array<std::int32_t, 2>, 3> Places{{{1, 1}, {1, 100}, {100, 100}}};
        return std::ranges::equal(georeference_.points, Places, [](const auto& point, const auto& place) {
            return point.pixelX == place[0] && point.pixelY == place[1];
        });
    }

    /// The points with the map's width and height as units, in the order of a ring.
    std::vector<Vector> Ring() const {
        std::vector<Vector> ring;
        for (const ReferencePoint& point : georeference_.points)
            ring.push_back(
                {static_cast<double>(point.pixelX) / width_, static_cast<double>(point.pixelY) / height_});
        if (georeference_.kind == ScalingKind::Polar)
            std::swap(ring.at(2), ring.at(3));
        return ring;
    }

    void LookAtPoints() {
        if (AreOfWorldfile())
            return;
        const std::vector<Vector> ring = Ring();
        double longest = 0, area = 0; // the area twice
        for (std::size_t i = 0; i < ring.size(); ++i) {
            area += Cross(ring[i], ring[(i + 1) % ring.size()]);
            for (const Vector& other : ring)
                longest = std::max(longest, Length(other - ring[i]));
        }
        if (longest < LeastSpread)
            Say(ScalingDoubt::PointsNear,
                "The points are near each other: what is wrong with them by a pixel is wrong "
                "by " +
                    std::to_string(std::lround(1 / longest)) + " at the far side of the map.");
        else if (std::abs(area) < LeastHeight * longest * longest)
            Say(ScalingDoubt::PointsOnLine,
                "The points are nearly on one line: beside it the coordinates are not reliable.");
    }

    const Georeference& georeference_;
    std::int32_t width_;
    std::int32_t height_;
    std::unique_ptr<Scaling> scaling_;
    PixelPosition middle_;
    Steps steps_;
    std::vector<ScalingRemark> remarks_;
};

} // namespace

std::string_view NameOf(ScalingDoubt doubt) {
    constexpr std::array<std::string_view, 10> Names{
        "mirrored", "swapped-axes", "feet-for-metres", "metres-for-feet", "hemisphere",
        "far-away", "scale-ratio",  "shear",           "points-near",     "points-on-line"};
    return Names.at(static_cast<std::size_t>(doubt));
}

std::vector<ScalingRemark> ReviewScaling(const Georeference& georeference, std::int32_t width,
                                         std::int32_t height) {
    if (georeference.kind == ScalingKind::None)
        return {};
    return Review(georeference, width, height).Remarks();
}
