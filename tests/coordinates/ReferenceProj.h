#pragma once

#include "coordinates/Projection.h"

#include <memory>
#include <string>
#include <vector>

#include <proj.h>

// What PROJ says by itself, from the codes of its database or from PROJJSON: nothing here uses the engine's
// own strings or numbers.

struct ReferenceDeleter {
    void operator()(PJ_CONTEXT* context) const { proj_context_destroy(context); }
    void operator()(PJ* object) const { proj_destroy(object); }
};
using ReferencePointer = std::unique_ptr<PJ, ReferenceDeleter>;

/// An area of use; the east may be beyond 180 so that it is never less than the west.
struct ReferenceArea {
    double west;
    double south;
    double east;
    double north;

    /// side × side points, from edge to edge.
    std::vector<LonLat> Points(int side) const;
};

/// The shared context of a test program. Throws std::runtime_error when PROJ cannot make an object, so that a
/// missing database fails the test.
PJ_CONTEXT* ReferenceContext();
ReferencePointer ReferenceObject(const std::string& definition);
ReferenceArea ReferenceAreaOf(const PJ* object);

/// The conversion from a geographic to a projected CRS on the same datum, longitude/latitude to metres.
class ReferenceGrid {
public:
    /// An empty geographic definition takes the base of the projected CRS.
    ReferenceGrid(const std::string& geographic, const std::string& projected);

    EastNorth Forward(const LonLat& position) const;
    LonLat Inverse(const EastNorth& position) const;
    const ReferenceArea& Area() const { return area_; }

private:
    ReferencePointer operation_;
    double metresPerUnit_;
    ReferenceArea area_{};
};

/// A transverse Mercator CRS as PROJJSON on the geographic CRS of a code.
std::string TransverseMercatorJson(const std::string& geographic, double lon0, double k0, double falseEasting,
                                   double falseNorthing);

/// Metres on the ground, near enough for differences of millimetres.
double GroundDistance(const LonLat& a, const LonLat& b);
