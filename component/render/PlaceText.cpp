#include "component/render/PlaceText.h"

#include "base/ComponentError.h"
#include "base/NumberText.h"
#include "component/render/ExportText.h"
#include "component/scaling/Scaling.h"

#include <cmath>
#include <optional>

namespace {

/// Control points along each side of a polar map: enough for a third-degree polynomial to follow the arcs.
constexpr int ControlPoints = 9;

std::string Attribute(const char* name, double value) {
    return " " + std::string(name) + "=\"" + NumberToText(value) + "\"";
}

/// The value at (−½, −½), the upper left corner of the upper left pixel, then the steps.
std::string Geotransform(const Georeference& georeference) {
    const Affine at = AffineOf(std::span<const ReferencePoint, 3>(georeference.points.data(), 3));
    const WorldPosition corner = MakeScaling(georeference)->PixelToWorld({-0.5, -0.5});
    std::string text = "  <GeoTransform>";
    const char* between = "";
    for (const double number : {corner.x, at.a, at.b, corner.y, at.d, at.e}) {
        text += between + NumberToText(number);
        between = ", ";
    }
    return text + "</GeoTransform>\n";
}

/// One control point; there a pixel's centre is at a half. Nothing where the scaling is not defined.
std::optional<std::string> ControlPoint(const Scaling& scaling, const PixelPosition& pixel) {
    const WorldPosition world = scaling.PixelToWorld(pixel);
    if (!std::isfinite(world.x) || !std::isfinite(world.y))
        return std::nullopt;
    return Attribute("Pixel", pixel.x + 0.5) + Attribute("Line", pixel.y + 0.5) + Attribute("X", world.x) +
           Attribute("Y", world.y);
}

/// Which of the system's axes a point's X and Y are.
std::string AxisMapping(const CrsText& crs) {
    return std::string(" dataAxisToSRSAxisMapping=\"") + (crs.northFirst ? "2,1" : "1,2") + "\"";
}

std::string ControlPointList(const ExportedMap& map, const CrsText& crs) {
    const auto scaling = MakeScaling(map.georeference);
    std::string text = "  <GCPList";
    if (!crs.wkt.empty())
        text += " Projection=\"" + MarkupText(crs.wkt) + "\"" + AxisMapping(crs);
    text += ">\n";
    int number = 0;
    const auto place = [](int i, std::int32_t size) {
        return std::round((size - 1.0) * i / (ControlPoints - 1));
    };
    for (int row = 0; row < ControlPoints; ++row)
        for (int column = 0; column < ControlPoints; ++column)
            if (const auto point = ControlPoint(
                    *scaling, {place(column, map.layout.Width()), place(row, map.layout.Height())}))
                text += "    <GCP Id=\"" + std::to_string(++number) + "\"" + *point + "/>\n";
    return text + "  </GCPList>\n";
}

} // namespace

CrsText CrsOf(const Georeference& georeference) {
    if (georeference.kind == ScalingKind::None)
        return {};
    const QuorvantDatum datum = georeference.datum.value_or(QuorvantDatum());
    return georeference.system.shiftUnknown
               ? DescribeUnboundCrs(datum, georeference.grid, ValidUtf8(georeference.system.name))
               : DescribeCrs(datum, georeference.grid, georeference.gridIdentifier);
}

std::string PlaceText(const ExportedMap& map) {
    const Georeference& georeference = map.georeference;
    if (georeference.kind == ScalingKind::None)
        return {};
    const CrsText crs = CrsOf(georeference);
    if (georeference.kind == ScalingKind::Polar)
        return ControlPointList(map, crs);
    const std::string place = Geotransform(georeference);
    return crs.wkt.empty() ? place
                           : "  <SRS" + AxisMapping(crs) + ">" + MarkupText(crs.wkt) + "</SRS>\n" + place;
}
