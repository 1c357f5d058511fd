#include "coordinates/CrsText.h"

#include "base/ComponentError.h"
#include "base/NumberText.h"
#include "coordinates/EpsgNames.h"
#include "coordinates/ProjTransform.h"
#include "coordinates/ProjectionText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>

namespace {

using Json = nlohmann::json;

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

/// Empty for a grid that PROJ cannot describe. `datumText` describes the datum.
std::string CrsDescription(const std::string& datumText, const std::optional<GridNumbers>& grid) {
    if (!grid)
        return "+proj=longlat" + datumText + " +no_defs +type=crs";
    RequireFinite(*grid);
    const std::string projection = ProjectionText(*grid);
    if (projection.empty())
        return {};
    return projection + datumText + " +units=m +no_defs +type=crs";
}

/// What a system is called, and what it is in the registry.
struct CrsIdentity {
    std::string name;
    std::optional<EpsgGrid> grid;
    std::optional<EpsgDatum> datum; ///< the only one that fits
    std::string datumName;          ///< also where several fit
};

bool IsOf(const GridFit& fit, const std::vector<GridFit>& fits) {
    return std::ranges::find(fits, fit) != fits.end();
}

std::string CatalogueName(const SystemNames& names) {
    if (names.grids.empty())
        return "Custom grid";
    const GridFit& first = names.grids.front();
    const bool withZone = names.grids.size() == 1 && first.zone != 0;
    return names.GridName() + (withZone ? " zone " + std::to_string(first.zone) : "");
}

std::string DatumNameOf(const std::vector<EpsgDatum>& datums) {
    std::vector<std::string> names;
    for (const EpsgDatum& datum : datums)
        names.emplace_back(datum.name);
    return names.empty() ? "Custom datum" : JoinNames(names);
}

/// Of the datums with the same numbers those that are meant.
std::vector<EpsgDatum> DatumsMeant(const QuorvantDatum& datum, const SystemNames& names) {
    if (names.datums.size() == 1)
        return {EpsgDatums.at(static_cast<std::size_t>(names.datums.front()) - 1)};
    return EpsgDatumsOf(datum);
}

CrsIdentity IdentityOf(const QuorvantDatum& datum, const std::optional<GridNumbers>& grid,
                       std::int32_t gridIdentifier) {
    const SystemNames names = NamesOf(datum, grid, gridIdentifier);
    const std::vector<EpsgDatum> datums = DatumsMeant(datum, names);
    CrsIdentity identity;
    identity.datumName = DatumNameOf(datums);
    if (datums.size() == 1)
        identity.datum = datums.front();
    // The identifier is only what somebody said: a code stands for its numbers.
    if (grid && names.grids.size() == 1 && IsOf(names.grids.front(), FittingGrids(*grid, datum)))
        identity.grid = EpsgGridOf(names.grids.front());
    identity.name = !grid ? identity.datumName : identity.grid ? identity.grid->name : CatalogueName(names);
    return identity;
}

Json Code(int code) {
    return {{"authority", "EPSG"}, {"code", code}};
}

/// The registry has the latitude first.
void TurnAxes(Json& crs) {
    Json& axes = crs["coordinate_system"]["axis"];
    std::swap(axes.at(0), axes.at(1));
}

void NameGeographic(Json& crs, const CrsIdentity& identity) {
    crs["name"] = identity.datumName;
    crs["datum"]["name"] = identity.datumName;
    crs["datum"].erase("id");
    if (!identity.datum)
        return;
    crs["datum"]["name"] = identity.datum->datum;
    crs["datum"]["ellipsoid"]["name"] = identity.datum->ellipsoid;
    crs["id"] = Code(identity.datum->code);
    TurnAxes(crs);
}

/// Without the last digits, which a difference leaves: 1e-10 degrees are far below a tenth of a millimetre.
double Rounded(double degrees) {
    return std::nearbyint(degrees * 1e10) / 1e10;
}

/// Counts the longitudes of the system and its projection from another meridian.
void MoveMeridian(Json& crs, const EpsgBase& base) {
    crs["base_crs"]["datum"]["prime_meridian"] = {{"name", base.meridian}, {"longitude", base.longitude}};
    for (Json& parameter : crs["conversion"]["parameters"])
        if (parameter["name"].get<std::string>().starts_with("Longitude of"))
            parameter["value"] = Rounded(parameter["value"].get<double>() - base.longitude);
}

void NameBase(Json& crs, const EpsgBase& base) {
    Json& geographic = crs["base_crs"];
    geographic["name"] = base.name;
    geographic["datum"]["name"] = base.datum;
    geographic["id"] = Code(base.code);
    if (!base.meridian.empty())
        MoveMeridian(crs, base);
}

void NameProjected(Json& crs, const CrsIdentity& identity) {
    NameGeographic(crs["base_crs"], identity);
    crs["name"] = identity.name;
    crs["conversion"]["name"] = identity.name.substr(
        identity.name.find(" / ") == std::string::npos ? 0 : identity.name.find(" / ") + 3);
    if (!identity.grid)
        return;
    crs["id"] = Code(identity.grid->code);
    if (identity.grid->northFirst)
        TurnAxes(crs);
    if (identity.grid->base != nullptr)
        NameBase(crs, *identity.grid->base);
}

/// Gives the system, and what it consists of, the names and codes that PROJ does not know from the numbers.
void NameParts(Json& crs, const CrsIdentity& identity) {
    if (crs["type"] == "BoundCRS") {
        crs["transformation"]["name"] = "Transformation from " + identity.datumName + " to WGS 84";
        NameParts(crs["source_crs"], identity);
    } else if (crs["type"] == "ProjectedCRS") {
        NameProjected(crs, identity);
    } else {
        NameGeographic(crs, identity);
    }
}

std::string TextOrNothing(const char* text) {
    return text == nullptr ? std::string() : std::string(text);
}

std::string WktOf(const std::string& description, const CrsIdentity& identity) {
    const ProjContextPointer context = MakeProjContext();
    const ProjPointer bare(proj_create(context.get(), description.c_str()));
    if (!bare)
        return {};
    Json json = Json::parse(TextOrNothing(proj_as_projjson(context.get(), bare.get(), nullptr)));
    NameParts(json, identity);
    const ProjPointer named(proj_create(context.get(), json.dump().c_str()));
    if (!named)
        return {};
    return TextOrNothing(proj_as_wkt(context.get(), named.get(), PJ_WKT2_2019, nullptr));
}

CrsText TextOf(const CrsIdentity& identity, const std::string& wkt, bool projected) {
    if (projected)
        return {wkt, identity.name, identity.grid ? identity.grid->code : 0,
                identity.grid && identity.grid->northFirst};
    return {wkt, identity.name, identity.datum ? identity.datum->code : 0, identity.datum.has_value()};
}

/// `identity` gives the name of what the description describes, if it describes anything.
template <typename Identity>
CrsText Describe(const std::string& description, bool projected, const Identity& identity) {
    if (description.empty())
        return {};
    const CrsIdentity found = identity();
    const std::string wkt = WktOf(description, found);
    return wkt.empty() ? CrsText() : TextOf(found, wkt, projected);
}

/// Numbers that describe no system have no text either, nor has what PROJ cannot describe though it made it.
template <typename Description>
CrsText TextOrNone(const Description& describe) {
    try {
        return describe();
    } catch (const ComponentError&) {
        return {};
    } catch (const Json::exception&) {
        return {};
    }
}

} // namespace

CrsText DescribeCrs(const QuorvantDatum& datum, const std::optional<GridNumbers>& grid,
                    std::int32_t gridIdentifier) {
    return TextOrNone([&] {
        RequireUsable(datum);
        return Describe(CrsDescription(DatumText(datum), grid), grid.has_value(),
                        [&] { return IdentityOf(datum, grid, gridIdentifier); });
    });
}

CrsText DescribeUnboundCrs(const QuorvantDatum& datum, const std::optional<GridNumbers>& grid,
                           const std::string& name) {
    return TextOrNone([&] {
        RequireUsable(datum);
        CrsIdentity identity;
        identity.datumName = "Unknown datum";
        identity.name = !name.empty() ? name : grid ? "Custom grid" : identity.datumName;
        if (!grid)
            identity.datumName = identity.name;
        return Describe(CrsDescription(EllipsoidText(datum), grid), grid.has_value(),
                        [&] { return identity; });
    });
}
