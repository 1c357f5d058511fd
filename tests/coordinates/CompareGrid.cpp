#include "tests/coordinates/CompareGrid.h"

#include <gtest/gtest.h>

#include <cmath>

void ExpectSameGrid(const QuorvantGrid& grid, const ReferenceGrid& reference,
                    const std::vector<LonLat>& points) {
    constexpr double millimetre = 0.001;
    const GridProjection projection(grid.AsNumbers(), grid.Datum());
    for (const LonLat& point : points) {
        SCOPED_TRACE(std::to_string(point.longitude) + " " + std::to_string(point.latitude));
        const EastNorth plane = projection.Forward(point);
        const EastNorth expected = reference.Forward(point);
        EXPECT_LE(std::hypot(plane.easting - expected.easting, plane.northing - expected.northing),
                  2 * millimetre)
            << plane.easting << " " << plane.northing << ", PROJ " << expected.easting << " "
            << expected.northing;
        EXPECT_LE(GroundDistance(projection.Inverse(expected), reference.Inverse(expected)), 2 * millimetre);
        EXPECT_LE(GroundDistance(projection.Inverse(plane), point), millimetre);
    }
}
