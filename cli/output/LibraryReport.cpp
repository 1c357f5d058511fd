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
    return {{"name", names.DatumName()},
            {"names", names.DatumNames()},
            {"identifier", names.datums.size() == 1 ? names.datums.front() : 0},
            {"semiMajorAxis", datum.SemiMajorAxis()},
            {"e2", datum.e2()},
            {"deltaX", datum.DeltaX()},
            {"deltaY", datum.DeltaY()},
            {"deltaZ", datum.DeltaZ()},
            {"rotX", datum.RotX()},
            {"rotY", datum.RotY()},
            {"rotZ", datum.RotZ()},
            {"scaleFactor", datum.ScaleFactor()}};
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
            {"referencePoints", PointsAsJson(georeference)},
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
    return text + PointsAsText(georeference);
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
