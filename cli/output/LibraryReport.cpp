#include "cli/output/LibraryReport.h"

#include "cli/output/Output.h"
#include "coordinates/SystemNames.h"

#include <nlohmann/json.hpp>

using Json = nlohmann::ordered_json;

namespace {

Json MetadataAsJson(const Metadata& metadata) {
    Json texts = Json::object();
    for (std::int32_t position = 1; position <= metadata.MetadataCount(); ++position)
        texts[metadata.MetadataKeyAt(position)] = metadata.MetadataValueAt(position);
    return texts;
}

SystemNames NamesOf(const Georeference& georeference) {
    // The numbers of an ellipsoid alone are those of many datums that do not differ from WGS84.
    if (georeference.system.shiftUnknown)
        return {};
    return ::NamesOf(georeference.datum, georeference.grid, georeference.gridIdentifier);
}

/// As text: nothing where there is no grid.
std::string ZoneOf(const Georeference& georeference) {
    return georeference.grid ? ZoneText(*georeference.grid, georeference.zone) : std::string();
}

Json DatumAsJson(const Georeference& georeference) {
    if (!georeference.datum)
        return nullptr;
    const QuorvantDatum& datum = *georeference.datum;
    const SystemNames names = NamesOf(georeference);
    const auto shift = [&georeference](double number) {
        return georeference.system.shiftUnknown ? Json(nullptr) : Json(number);
    };
    return {{"name", names.DatumName()},
            {"names", names.DatumNames()},
            {"identifier", names.datums.size() == 1 ? names.datums.front() : 0},
            {"semiMajorAxis", datum.SemiMajorAxis()},
            {"e2", datum.e2()},
            {"deltaX", shift(datum.DeltaX())},
            {"deltaY", shift(datum.DeltaY())},
            {"deltaZ", shift(datum.DeltaZ())},
            {"rotX", shift(datum.RotX())},
            {"rotY", shift(datum.RotY())},
            {"rotZ", shift(datum.RotZ())},
            {"scaleFactor", shift(datum.ScaleFactor())}};
}

Json GridAsJson(const Georeference& georeference) {
    if (!georeference.grid)
        return nullptr;
    const GridNumbers& grid = *georeference.grid;
    const SystemNames names = NamesOf(georeference);
    return {{"name", names.GridName()},
            {"names", names.GridNames()},
            {"identifier", georeference.gridIdentifier},
            {"method", grid.method},
            {"zone", grid.zone},
            {"latitude", grid.values[0]},
            {"longitude", grid.values[1]},
            {"scale", grid.values[2]},
            {"falseEasting", grid.values[3]},
            {"falseNorthing", grid.values[4]},
            {"parallel1", grid.values[5]},
            {"parallel2", grid.values[6]}};
}

const char* ScalingName(ScalingKind kind) {
    switch (kind) {
    case ScalingKind::None:
        return "none";
    case ScalingKind::Linear:
        return "linear";
    case ScalingKind::Polar:
        return "polar";
    }
    return "none";
}

Json PointsAsJson(const Georeference& georeference) {
    Json points = Json::array();
    for (const ReferencePoint& point : georeference.points)
        points.push_back(
            {{"pixelX", point.pixelX}, {"pixelY", point.pixelY}, {"x", point.x}, {"y", point.y}});
    return points;
}

/// The accuracy is null where it is not known.
Json SystemAsJson(const SystemIdentity& system) {
    if (system == SystemIdentity())
        return nullptr;
    return {{"code", system.code},
            {"name", system.name},
            {"shiftCode", system.shiftCode},
            {"shiftName", system.shiftName},
            {"shiftAccuracy", system.shiftAccuracy > 0 ? Json(system.shiftAccuracy) : Json(nullptr)},
            {"shiftUnknown", system.shiftUnknown}};
}

Json PointsAsJson(const std::vector<MeasuredPoint>& measured) {
    Json points = Json::array();
    for (const MeasuredPoint& point : measured)
        points.push_back({{"pixelX", point.pixelX},
                          {"pixelY", point.pixelY},
                          {"x", point.x},
                          {"y", point.y},
                          {"label", point.label}});
    return points;
}

Json CheckSetsAsJson(const Georeference& georeference) {
    Json sets = Json::array();
    for (const CheckSet& set : georeference.checks)
        sets.push_back({{"name", set.name}, {"points", PointsAsJson(set.points)}});
    return sets;
}

Json MapAsJson(const AtlavexMap& map, std::int32_t position) {
    const PyramidLayout& layout = map.Layout();
    const Georeference& georeference = map.MapGeoreference();
    return {{"position", position},
            {"name", map.Name()},
            {"identifier", map.Identifier()},
            {"width", map.Width()},
            {"height", map.Height()},
            {"tileWidth", layout.TileWidth()},
            {"tileHeight", layout.TileHeight()},
            {"levels", layout.Levels()},
            {"scaled", map.IsScaled()},
            {"scaling", ScalingName(georeference.kind)},
            {"datum", DatumAsJson(georeference)},
            {"grid", GridAsJson(georeference)},
            {"zone", ZoneOf(georeference)},
            {"system", SystemAsJson(georeference.system)},
            {"referencePoints", PointsAsJson(georeference)},
            {"enteredPoints", PointsAsJson(georeference.entered)},
            {"checkSets", CheckSetsAsJson(georeference)},
            {"metadata", MetadataAsJson(map)}};
}

Json IconAsJson(AtlavexIcon& icon, std::int32_t position) {
    const auto image = icon.Image();
    return {{"position", position},
            {"name", icon.Name()},
            {"width", image->Width()},
            {"height", image->Height()},
            {"offset", {{"x", icon.OffsetX()}, {"y", icon.OffsetY()}}},
            {"metadata", MetadataAsJson(icon)}};
}

std::string SizeText(std::int32_t width, std::int32_t height) {
    return std::to_string(width) + "x" + std::to_string(height);
}

std::string Line(const std::string& title, const std::string& value) {
    return "   " + title + ": " + Printable(value) + "\n";
}

std::string MetadataAsText(const Metadata& metadata) {
    std::string text;
    for (std::int32_t position = 1; position <= metadata.MetadataCount(); ++position)
        text += "   " +
                Printable(metadata.MetadataKeyAt(position) + "=" + metadata.MetadataValueAt(position)) + "\n";
    return text;
}

std::string NameOrNumbers(const std::string& name) {
    return name.empty() ? "by its numbers (see --json)" : name;
}

std::string PointsAsText(const Georeference& georeference) {
    std::string text;
    for (const ReferencePoint& point : georeference.points)
        text += Line("point", std::to_string(point.pixelX) + "," + std::to_string(point.pixelY) + "=" +
                                  CoordinateText(point.x) + "," + CoordinateText(point.y));
    return text;
}

std::string WithCode(const std::string& name, const std::string& code) {
    return name.empty() || code.empty() ? name + code : name + " (" + code + ")";
}

std::string SystemAsText(const SystemIdentity& system) {
    std::string text;
    if (!system.code.empty() || !system.name.empty())
        text += Line("system", WithCode(system.name, system.code));
    std::string shift = system.shiftUnknown ? "unknown" : WithCode(system.shiftName, system.shiftCode);
    if (system.shiftAccuracy > 0)
        shift += (shift.empty() ? "good to " : ", good to ") + CoordinateText(system.shiftAccuracy) + " m";
    return shift.empty() ? text : text + Line("shift to WGS84", shift);
}

std::string PointsAsText(const std::string& title, const std::vector<MeasuredPoint>& points) {
    std::string text;
    for (const MeasuredPoint& point : points)
        text += Line(title, CoordinateText(point.pixelX) + "," + CoordinateText(point.pixelY) + "=" +
                                CoordinateText(point.x) + "," + CoordinateText(point.y) +
                                (point.label.empty() ? "" : " " + point.label));
    return text;
}

std::string CheckSetsAsText(const Georeference& georeference) {
    std::string text;
    for (const CheckSet& set : georeference.checks)
        text += PointsAsText(set.name.empty() ? "check" : "check (" + Printable(set.name) + ")", set.points);
    return text;
}

std::string GeoreferenceAsText(const Georeference& georeference) {
    const SystemNames names = NamesOf(georeference);
    const std::string zone = ZoneOf(georeference);
    std::string text = Line("scaling", ScalingName(georeference.kind));
    if (georeference.grid)
        text += Line("grid", NameOrNumbers(names.GridName()));
    if (!zone.empty())
        text += Line("zone", zone);
    if (georeference.datum)
        text += Line("datum", NameOrNumbers(names.DatumName()));
    return text + SystemAsText(georeference.system) + PointsAsText(georeference) +
           PointsAsText("entered", georeference.entered) + CheckSetsAsText(georeference);
}

std::string MapAsText(const AtlavexMap& map, std::int32_t position) {
    const PyramidLayout& layout = map.Layout();
    return "Map " + std::to_string(position) + ": " + Printable(map.Name()) + "\n" +
           Line("identifier", map.Identifier()) + Line("pixels", SizeText(map.Width(), map.Height())) +
           Line("tiles", SizeText(layout.TileWidth(), layout.TileHeight()) + ", " +
                             std::to_string(layout.Levels()) +
                             (layout.Levels() == 1 ? " level" : " levels")) +
           GeoreferenceAsText(map.MapGeoreference()) + MetadataAsText(map);
}

std::string IconAsText(AtlavexIcon& icon, std::int32_t position) {
    const auto image = icon.Image();
    return "Icon " + std::to_string(position) + ": " + Printable(icon.Name()) + "\n" +
           Line("pixels", SizeText(image->Width(), image->Height())) +
           Line("offset", std::to_string(icon.OffsetX()) + "," + std::to_string(icon.OffsetY())) +
           MetadataAsText(icon);
}

} // namespace

Json LibraryAsJson(AtlavexLibrary& library) {
    Json maps = Json::array(), icons = Json::array();
    for (std::int32_t position = 1; position <= library.MapCount(); ++position)
        maps.push_back(MapAsJson(*library.GetMap(library.MapIdAt(position)), position));
    for (std::int32_t position = 1; position <= library.IconCount(); ++position)
        icons.push_back(IconAsJson(*library.GetIcon(library.IconIdAt(position)), position));
    return {{"file", library.FileName()}, {"sealed", library.IsSealed()}, {"maps", maps}, {"icons", icons}};
}

std::string LibraryAsText(AtlavexLibrary& library) {
    std::string text = "Library: ";
    text += Printable(library.FileName()) + "\nSealed: " + (library.IsSealed() ? "yes" : "no");
    text += "\nMaps: " + std::to_string(library.MapCount());
    text += "\nIcons: " + std::to_string(library.IconCount()) + "\n";
    for (std::int32_t position = 1; position <= library.MapCount(); ++position) {
        text += '\n';
        text += MapAsText(*library.GetMap(library.MapIdAt(position)), position);
    }
    for (std::int32_t position = 1; position <= library.IconCount(); ++position) {
        text += '\n';
        text += IconAsText(*library.GetIcon(library.IconIdAt(position)), position);
    }
    return text;
}
