#include "coordinates/CrsText.h"

#include "base/ComponentError.h"
#include "base/NumberText.h"
#include "coordinates/DatumTable.h"
#include "coordinates/ProjTransform.h"
#include "coordinates/ProjectionText.h"

#include <algorithm>

namespace {

bool HasShift(const QuorvantDatum& datum) {
    return std::ranges::any_of(datum.AsNumbers().begin() + 2, datum.AsNumbers().end(),
                               [](double number) { return number != 0; });
}

/// " +towgs84=dx,dy,dz,rx,ry,rz,s": the units and signs of the nine numbers are PROJ's.
std::string ShiftText(const QuorvantDatum& datum) {
    std::string text;
    for (std::size_t i = 2; i < datum.AsNumbers().size(); ++i)
        text += (text.empty() ? " +towgs84=" : ",") + NumberToText(datum.AsNumbers()[i]);
    return text;
}

std::string DatumText(const QuorvantDatum& datum) {
    if (datum == QuorvantDatum())
        return " +datum=WGS84";
    return EllipsoidText(datum) + (HasShift(datum) ? ShiftText(datum) : "");
}

/// Empty for a grid that PROJ has no name for.
std::string CrsDescription(const QuorvantDatum& datum, const std::optional<GridNumbers>& grid) {
    RequireUsable(datum);
    if (!grid)
        return "+proj=longlat" + DatumText(datum) + " +no_defs +type=crs";
    RequireFinite(*grid);
    const std::string projection = ProjectionText(*grid);
    if (projection.empty())
        return {};
    return projection + DatumText(datum) + " +units=m +no_defs +type=crs";
}

std::string WktOf(const std::string& description) {
    const ProjContextPointer context = MakeProjContext();
    const ProjPointer crs(proj_create(context.get(), description.c_str()));
    if (!crs)
        return {};
    const char* text = proj_as_wkt(context.get(), crs.get(), PJ_WKT2_2019, nullptr);
    return text == nullptr ? std::string() : std::string(text);
}

} // namespace

std::string CrsAsWkt(const QuorvantDatum& datum, const std::optional<GridNumbers>& grid) {
    try {
        const std::string description = CrsDescription(datum, grid);
        return description.empty() ? description : WktOf(description);
    } catch (const ComponentError&) {
        return {}; // numbers that describe no system have no text either
    }
}
