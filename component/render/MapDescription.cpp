#include "component/render/MapDescription.h"

#include "component/render/ExportText.h"
#include "component/render/PlaceText.h"
#include "component/render/Wgs84Bounds.h"
#include "component/scaling/Scaling.h"
#include "coordinates/SystemNames.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>

namespace {

using Json = nlohmann::ordered_json;

Json DescribeLevels(const PyramidLayout& layout) {
    Json levels = Json::array();
    for (int level = layout.Levels() - 1; level >= 0; --level) {
        const PyramidLevel& at = layout.Level(level);
        levels.push_back({{"z", layout.Levels() - 1 - level},
                          {"width", at.width},
                          {"height", at.height},
                          {"columns", at.columns},
                          {"rows", at.rows},
                          {"mapPixelsPerPixel", std::int64_t{1} << level}});
    }
    return levels;
}

SystemNames NamesOf(const Georeference& georeference) {
    // The numbers of an ellipsoid alone are those of many datums that do not differ from WGS84.
    if (georeference.system.shiftUnknown)
        return {};
    return ::NamesOf(georeference.datum, georeference.grid, georeference.gridIdentifier);
}

Json DescribeDatum(const Georeference& georeference) {
    constexpr std::array names = {"SemiMajorAxis", "e2",   "DeltaX", "DeltaY",     "DeltaZ",
                                  "RotX",          "RotY", "RotZ",   "ScaleFactor"};
    constexpr std::size_t ellipsoid = 2;
    Json numbers;
    for (std::size_t i = 0; i < names.size(); ++i)
        if (i < ellipsoid || !georeference.system.shiftUnknown)
            numbers[names[i]] = georeference.datum->AsNumbers()[i];
        else
            numbers[names[i]] = nullptr;
    numbers["name"] = NamesOf(georeference).DatumName();
    return numbers;
}

Json DescribeGrid(const Georeference& georeference) {
    constexpr std::array names = {"latitudeOfOrigin", "longitudeOfOrigin", "scale",    "falseEasting",
                                  "falseNorthing",    "parallel1",         "parallel2"};
    Json numbers = {{"method", georeference.grid->method}, {"zone", georeference.grid->zone}};
    for (std::size_t i = 0; i < names.size(); ++i)
        numbers[names[i]] = georeference.grid->values[i];
    numbers["identifier"] = georeference.gridIdentifier;
    numbers["name"] = NamesOf(georeference).GridName();
    numbers["zoneText"] = ValidUtf8(ZoneText(*georeference.grid, georeference.zone));
    return numbers;
}

Json DescribePoints(const Georeference& georeference) {
    Json points = Json::array();
    for (const ReferencePoint& point : georeference.points)
        points.push_back(
            {{"x", point.x}, {"y", point.y}, {"pixelX", point.pixelX}, {"pixelY", point.pixelY}});
    return points;
}

Json DescribePoints(const std::vector<MeasuredPoint>& measured) {
    Json points = Json::array();
    for (const MeasuredPoint& point : measured)
        points.push_back({{"x", point.x},
                          {"y", point.y},
                          {"pixelX", point.pixelX},
                          {"pixelY", point.pixelY},
                          {"label", ValidUtf8(point.label)}});
    return points;
}

Json DescribeChecks(const Georeference& georeference) {
    Json sets = Json::array();
    for (const CheckSet& set : georeference.checks)
        sets.push_back({{"name", ValidUtf8(set.name)}, {"points", DescribePoints(set.points)}});
    return sets;
}

/// What a registry calls the system; the accuracy is null where it is not known.
Json DescribeSystem(const SystemIdentity& system) {
    if (system == SystemIdentity())
        return nullptr;
    return {{"code", ValidUtf8(system.code)},
            {"name", ValidUtf8(system.name)},
            {"shiftCode", ValidUtf8(system.shiftCode)},
            {"shiftName", ValidUtf8(system.shiftName)},
            {"shiftAccuracy", system.shiftAccuracy > 0 ? Json(system.shiftAccuracy) : Json(nullptr)},
            {"shiftUnknown", system.shiftUnknown}};
}

/// X = a·px + b·py + c and Y = d·px + e·py + f, in this order; null where the scaling is not linear.
Json DescribeAffine(const Georeference& georeference) {
    if (georeference.kind != ScalingKind::Linear)
        return nullptr;
    const Affine affine = AffineOf(std::span<const ReferencePoint, 3>(georeference.points.data(), 3));
    return {affine.a, affine.b, affine.c, affine.d, affine.e, affine.f};
}

Json DescribeGeoreference(const Georeference& georeference) {
    if (georeference.kind == ScalingKind::None)
        return nullptr;
    return {{"kind", georeference.kind == ScalingKind::Polar ? "polar" : "linear"},
            {"coordinates", georeference.grid ? "easting-northing" : "longitude-latitude"},
            {"pixelRule", "whole numbers are pixel centres, (0, 0) is the upper left pixel"},
            {"points", DescribePoints(georeference)},
            {"enteredPoints", DescribePoints(georeference.entered)},
            {"checkSets", DescribeChecks(georeference)},
            {"system", DescribeSystem(georeference.system)},
            {"affine", DescribeAffine(georeference)},
            {"datum", georeference.datum ? DescribeDatum(georeference) : Json(nullptr)},
            {"grid", georeference.grid ? DescribeGrid(georeference) : Json(nullptr)}};
}

Json DescribeBounds(const ExportedMap& map) {
    const auto bounds = BoundsOf(map.layout, map.georeference);
    if (!bounds)
        return nullptr;
    return {
        {"west", bounds->west}, {"south", bounds->south}, {"east", bounds->east}, {"north", bounds->north}};
}

} // namespace

std::string DescribeMap(const ExportedMap& map, bool complete) {
    const PyramidLayout& layout = map.layout;
    const CrsText crs = CrsOf(map.georeference);
    const Json description = {
        {"formatVersion", TileFolderVersion},
        {"complete", complete},
        {"identifier", ValidUtf8(map.identifier)},
        {"name", ValidUtf8(map.name)},
        {"width", layout.Width()},
        {"height", layout.Height()},
        {"tileWidth", layout.TileWidth()},
        {"tileHeight", layout.TileHeight()},
        {"scheme", "{z}/{x}/{y}.png"},
        {"schemeRule", "z 0 is the smallest level, x counts from the left, y from the top"},
        {"edgeRule", "every tile has full size; beyond the map it is transparent"},
        {"levels", DescribeLevels(layout)},
        {"georeference", DescribeGeoreference(map.georeference)},
        {"crs", crs.wkt.empty() ? Json(nullptr) : Json(ValidUtf8(crs.wkt))},
        {"crsName", crs.name.empty() ? Json(nullptr) : Json(crs.name)},
        {"epsg", crs.epsg == 0 ? Json(nullptr) : Json(crs.epsg)},
        {"boundsWgs84", DescribeBounds(map)},
    };
    return description.dump(1) + "\n";
}

std::optional<std::string> IdentifierIn(std::string_view tilesJson) {
    const Json read = Json::parse(tilesJson, nullptr, false);
    if (!read.is_object() || !read.contains("identifier") || !read["identifier"].is_string())
        return std::nullopt;
    return read["identifier"].get<std::string>();
}
