#include "tests/support/desktop/RecordingMap.h"

#include "base/ComponentError.h"
#include "base/NumberText.h"
#include "component/library/PixelImage.h"

#include <stdexcept>

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

std::logic_error RecordingMap::Unexpected() {
    return std::logic_error("a map of no content was asked for what it has not");
}

void RecordingMap::FailIfToldTo() const {
    if (fails)
        throw ComponentError(ErrorNumber::NoSuchMap, "The map has been removed.");
}

void RecordingMap::SetZoom(double zoom) {
    FailIfToldTo();
    ++zoomsWritten;
    zoom_ = zoom;
}

bool RecordingMap::RenderView(std::int32_t left, std::int32_t top, std::int32_t width, std::int32_t height,
                              std::shared_ptr<const AtlavexImage>& image) {
    views.push_back({left, top, width, height, zoom_});
    FailIfToldTo();
    if (!changed || (obstructed && isDraft_))
        return false;
    Bitmap bitmap(width, height);
    bitmap.pixels.assign(bitmap.pixels.size(), Colour);
    image = std::make_shared<PixelImage>(std::move(bitmap));
    isDraft_ = drafts > 0 && drafts-- > 0;
    return true;
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

void RecordingMap::SetSystemIdentity(const SystemIdentity& system) {
    Note("SetSystemIdentity", system.code);
}

void RecordingMap::SetEnteredPoints(const std::vector<MeasuredPoint>& points) {
    Note("SetEnteredPoints", std::to_string(points.size()));
}

void RecordingMap::SetCheckSets(const std::vector<CheckSet>& sets) {
    Note("SetCheckSets", std::to_string(sets.size()));
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
