#include "tests/wizard/RecordingMap.h"

#include "base/ComponentError.h"
#include "base/NumberText.h"

namespace {

std::string PointText(const ReferencePoint& point) {
    return NumberToText(point.x) + " " + NumberToText(point.y) + " " + std::to_string(point.pixelX) + " " +
           std::to_string(point.pixelY);
}

} // namespace

std::string JoinNumbers(std::span<const double> numbers) {
    std::string text;
    for (const double number : numbers)
        text += (text.empty() ? "" : " ") + NumberToText(number);
    return text;
}

void RecordingMap::Note(const std::string& name, const std::string& arguments) {
    calls.push_back(name + " " + arguments);
    if (name == refuse)
        throw ComponentError(ErrorNumber::Failed, "No.");
}

void RecordingMap::SetMapDatum(const QuorvantDatum::Numbers& datum) {
    Note("SetMapDatum", JoinNumbers(datum));
}

void RecordingMap::SetMapGrid(std::int32_t method, std::int32_t zone, const std::array<double, 7>& values) {
    Note("SetMapGrid", std::to_string(method) + " " + std::to_string(zone) + " " + JoinNumbers(values));
}

void RecordingMap::SetGridIdentifier(std::int32_t identifier) {
    Note("SetGridIdentifier", std::to_string(identifier));
}

void RecordingMap::SetZone(const std::string& zone) {
    Note("SetZone", zone);
}

void RecordingMap::SetScalingThreePoints(const ReferencePoint& first, const ReferencePoint& second,
                                         const ReferencePoint& third) {
    Note("SetScalingThreePoints", PointText(first) + ", " + PointText(second) + ", " + PointText(third));
}

void RecordingMap::SetScalingCorners(const ReferencePoint& upperLeft, const ReferencePoint& lowerLeft,
                                     const ReferencePoint& upperRight, const ReferencePoint& lowerRight) {
    Note("SetScalingCorners", PointText(upperLeft) + ", " + PointText(lowerLeft) + ", " +
                                  PointText(upperRight) + ", " + PointText(lowerRight));
}
