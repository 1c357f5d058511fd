#include "wizard/ScaleHandover.h"

#include "base/CheckedNumbers.h"
#include "wizard/Projections.h"
#include "wizard/WizardMessages.h"

#include <string_view>

namespace {

/// A datum is read by the names of its properties, so that any object that has them will do.
QuorvantDatum::Numbers NumbersOf(const QuorvantDatum& datum) {
    constexpr std::array<std::string_view, 9> names{"SemiMajorAxis", "e2",   "DeltaX", "DeltaY",     "DeltaZ",
                                                    "RotX",          "RotY", "RotZ",   "ScaleFactor"};
    QuorvantDatum::Numbers numbers{};
    for (std::size_t i = 0; i < names.size(); ++i)
        numbers.at(i) = datum.Property(names.at(i)).value();
    return numbers;
}

} // namespace

ReferencePoint WizardPoints::At(std::int16_t number) const {
    const auto place = CheckedNarrow<std::size_t>(number);
    return {x.at(place), y.at(place), CheckedRound<std::int32_t>(pixelX.at(place)),
            CheckedRound<std::int32_t>(pixelY.at(place))};
}

void HandOverDatum(AtlavexMap& map, const QuorvantDatum& datum) {
    map.SetMapDatum(NumbersOf(datum));
}

void HandOverGrid(AtlavexMap& map, std::int16_t gridIdentifier, std::int16_t zone, const QuorvantGrid& grid) {
    map.SetGridIdentifier(gridIdentifier);
    map.SetZone(std::to_string(zone));
    HandOverDatum(map, grid.Datum());
    const GridNumbers& numbers = grid.AsNumbers();
    map.SetMapGrid(numbers.method, numbers.zone, numbers.values);
}

void HandOverPoints(AtlavexMap& map, std::int16_t projection, const WizardPoints& points) {
    if (projection == CartesianProjection)
        map.SetScalingThreePoints(points.At(1), points.At(2), points.At(3));
    else if (projection == PolarProjection)
        map.SetScalingCorners(points.At(1), points.At(2), points.At(3), points.At(4));
}

bool RunHandOver(QWidget* parent, AtlavexMap& map, const std::function<void()>& calls) {
    map.DropPendingSystem(); // what somebody left there belongs to no scaling of this run
    try {
        calls();
        return true;
    } catch (const std::exception& error) {
        map.DropPendingSystem();
        ShowInvalidScaling(parent, error);
        return false;
    }
}
