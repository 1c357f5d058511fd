#include "tests/coordinates/ReferenceProj.h"

#include "base/NumberText.h"

#include <cmath>
#include <numbers>
#include <stdexcept>

std::vector<LonLat> ReferenceArea::Points(int side) const {
    std::vector<LonLat> points;
    for (int row = 0; row < side; ++row) {
        for (int column = 0; column < side; ++column) {
            const double longitude = west + (east - west) * column / (side - 1);
            const double latitude = south + (north - south) * row / (side - 1);
            points.push_back({std::remainder(longitude, 360), latitude});
        }
    }
    return points;
}

PJ_CONTEXT* ReferenceContext() {
    static const std::unique_ptr<PJ_CONTEXT, ReferenceDeleter> context(proj_context_create());
    proj_context_set_enable_network(context.get(), 0);
    return context.get();
}

ReferencePointer ReferenceObject(const std::string& definition) {
    ReferencePointer object(proj_create(ReferenceContext(), definition.c_str()));
    if (!object)
        throw std::runtime_error("PROJ has no object " + definition);
    return object;
}

ReferenceArea ReferenceAreaOf(const PJ* object) {
    ReferenceArea area{};
    if (!proj_get_area_of_use(ReferenceContext(), object, &area.west, &area.south, &area.east, &area.north,
                              nullptr))
        throw std::runtime_error("no area of use");
    if (area.east < area.west)
        area.east += 360;
    return area;
}

namespace {

double MetresPerUnit(const PJ* crs) {
    const ReferencePointer system(proj_crs_get_coordinate_system(ReferenceContext(), crs));
    double factor = 0;
    if (!system || !proj_cs_get_axis_info(ReferenceContext(), system.get(), 0, nullptr, nullptr, nullptr,
                                          &factor, nullptr, nullptr, nullptr))
        throw std::runtime_error("no axis");
    return factor;
}

ReferencePointer Normalised(ReferencePointer operation) {
    if (!operation)
        throw std::runtime_error("PROJ finds no operation between the two systems");
    ReferencePointer normalised(proj_normalize_for_visualization(ReferenceContext(), operation.get()));
    if (!normalised)
        throw std::runtime_error("PROJ cannot normalise the operation");
    return normalised;
}

} // namespace

ReferenceGrid::ReferenceGrid(const std::string& geographic, const std::string& projected) {
    const ReferencePointer target = ReferenceObject(projected);
    const ReferencePointer source =
        geographic.empty() ? ReferencePointer(proj_crs_get_geodetic_crs(ReferenceContext(), target.get()))
                           : ReferenceObject(geographic);
    operation_ = Normalised(ReferencePointer(
        proj_create_crs_to_crs_from_pj(ReferenceContext(), source.get(), target.get(), nullptr, nullptr)));
    metresPerUnit_ = MetresPerUnit(target.get());
    if (projected.starts_with("EPSG:"))
        area_ = ReferenceAreaOf(target.get());
}

EastNorth ReferenceGrid::Forward(const LonLat& position) const {
    const PJ_COORD out =
        proj_trans(operation_.get(), PJ_FWD, proj_coord(position.longitude, position.latitude, 0, 0));
    return {out.xy.x * metresPerUnit_, out.xy.y * metresPerUnit_};
}

LonLat ReferenceGrid::Inverse(const EastNorth& position) const {
    const PJ_COORD in =
        proj_coord(position.easting / metresPerUnit_, position.northing / metresPerUnit_, 0, 0);
    const PJ_COORD out = proj_trans(operation_.get(), PJ_INV, in);
    return {out.lp.lam, out.lp.phi};
}

namespace {

std::string Parameter(const std::string& name, double value, const std::string& unit) {
    return R"({"name": ")" + name + R"(", "value": )" + NumberToText(value) + R"(, "unit": ")" + unit +
           R"("})";
}

std::string Axis(const std::string& name, const std::string& abbreviation, const std::string& direction) {
    return R"({"name": ")" + name + R"(", "abbreviation": ")" + abbreviation + R"(", "direction": ")" +
           direction + R"(", "unit": "metre"})";
}

} // namespace

std::string TransverseMercatorJson(const std::string& geographic, double lon0, double k0, double falseEasting,
                                   double falseNorthing) {
    const ReferencePointer base = ReferenceObject(geographic);
    const std::string baseJson = proj_as_projjson(ReferenceContext(), base.get(), nullptr);
    return R"({"type": "ProjectedCRS", "name": "zone", "base_crs": )" + baseJson +
           R"(, "conversion": {"name": "zone", "method": {"name": "Transverse Mercator", "id": {"authority": "EPSG", "code": 9807}}, "parameters": [)" +
           Parameter("Latitude of natural origin", 0, "degree") + ", " +
           Parameter("Longitude of natural origin", lon0, "degree") + ", " +
           Parameter("Scale factor at natural origin", k0, "unity") + ", " +
           Parameter("False easting", falseEasting, "metre") + ", " +
           Parameter("False northing", falseNorthing, "metre") +
           R"(]}, "coordinate_system": {"subtype": "Cartesian", "axis": [)" + Axis("Easting", "E", "east") +
           ", " + Axis("Northing", "N", "north") + "]}}";
}

double GroundDistance(const LonLat& a, const LonLat& b) {
    constexpr double metresPerDegree = 111320;
    const double parallel = std::cos(a.latitude * std::numbers::pi / 180);
    return metresPerDegree *
           std::hypot(std::remainder(a.longitude - b.longitude, 360) * parallel, a.latitude - b.latitude);
}
