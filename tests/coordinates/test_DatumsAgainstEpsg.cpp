#include "tests/coordinates/ReferenceProj.h"

#include <gtest/gtest.h>

namespace {

struct DatumCase {
    int identifier;
    const char* name;
    int geographic;
    int operation; ///< EPSG transformation to WGS84; 0 for WGS84 itself
};

constexpr DatumCase DatumCases[]{
    {2, "Etrs89", 4258, 1149},       {3, "Osgb36", 4277, 1314},      {4, "Ch1903", 4149, 1766},
    {5, "Rt90", 4124, 1896},         {6, "Ireland65", 4299, 1641},   {7, "FinlandHayford", 4123, 10099},
    {8, "Luref", 4181, 5486},        {9, "Wgs72", 4322, 1238},       {10, "Agd84", 4203, 1669},
    {11, "Gda94", 4283, 1150},       {12, "Mgi", 4312, 1618},        {13, "Nzgd49", 4272, 1564},
    {14, "Nzgd2000", 4167, 1565},    {15, "Ntf", 4275, 1193},        {16, "Bd72", 4313, 15929},
    {17, "Ed50", 4230, 1133},        {18, "Potsdam", 4314, 1777},    {19, "Nad83", 4269, 1188},
    {20, "Nad27Alaska", 4267, 1176}, {21, "Nad27East", 4267, 1174},  {22, "Nad27Conus", 4267, 1173},
    {23, "Nad27West", 4267, 1175},   {24, "Amersfoort", 4289, 4833}, {25, "Roma40", 4265, 1660},
    {26, "Ngo48", 4273, 1654},       {27, "Ed50Denmark", 4230, 1627}};

/// Datums that only a state-plane zone has.
struct OwnDatumCase {
    int zone;
    int geographic;
    int operation;
};
constexpr OwnDatumCase OwnDatumCases[]{{5101, 4135, 15824}, {5105, 4135, 15824}, {5201, 4139, 1893},
                                       {5202, 4139, 1893},  {5002, 4267, 1176},  {5010, 4267, 1176},
                                       {101, 4267, 1173},   {4204, 4267, 1173}};

class Datums : public testing::TestWithParam<DatumCase> {};

void ExpectSameEllipsoid(const QuorvantDatum& datum, int geographic) {
    const ReferencePointer crs = ReferenceObject("EPSG:" + std::to_string(geographic));
    const ReferencePointer ellipsoid(proj_get_ellipsoid(ReferenceContext(), crs.get()));
    double a = 0, b = 0;
    ASSERT_TRUE(proj_ellipsoid_get_parameters(ReferenceContext(), ellipsoid.get(), &a, &b, nullptr, nullptr));
    EXPECT_DOUBLE_EQ(datum.SemiMajorAxis(), a);
    EXPECT_NEAR(datum.e2(), 1 - (b / a) * (b / a), 1e-15);
}

/// The named operation itself, never the one that PROJ would pick: that depends on the grids installed. Both
/// ends of it run in degrees; its axes stand in the order latitude, longitude.
class ReferenceShift {
public:
    explicit ReferenceShift(int operation)
        : operation_(proj_create_from_database(ReferenceContext(), "EPSG", std::to_string(operation).c_str(),
                                               PJ_CATEGORY_COORDINATE_OPERATION, 0, nullptr)),
          area_(ReferenceAreaOf(operation_.get())) {
        operation_.reset(proj_normalize_for_visualization(ReferenceContext(), operation_.get()));
    }

    LonLat Run(PJ_DIRECTION direction, const LonLat& position) const {
        const PJ_COORD out =
            proj_trans(operation_.get(), direction, proj_coord(position.longitude, position.latitude, 0, 0));
        return {out.lp.lam, out.lp.phi};
    }
    const ReferenceArea& Area() const { return area_; }

private:
    ReferencePointer operation_;
    ReferenceArea area_;
};

void ExpectSameShift(const QuorvantDatum& datum, int operation) {
    constexpr double twoCentimetres = 0.02;
    const ReferenceShift reference(operation);
    const DatumShift shift(datum);
    for (const LonLat& point : reference.Area().Points(7)) {
        SCOPED_TRACE(std::to_string(point.longitude) + " " + std::to_string(point.latitude));
        EXPECT_LE(GroundDistance(shift.ToWgs84(point), reference.Run(PJ_FWD, point)), twoCentimetres);
        EXPECT_LE(GroundDistance(shift.FromWgs84(point), reference.Run(PJ_INV, point)), twoCentimetres);
        EXPECT_LE(GroundDistance(shift.FromWgs84(shift.ToWgs84(point)), point), twoCentimetres);
    }
}

} // namespace

TEST_P(Datums, HaveTheEllipsoidAndTheShiftOfTheirEpsgCodes) {
    const QuorvantDatum datum = MakeDatum(static_cast<std::int16_t>(GetParam().identifier));
    ExpectSameEllipsoid(datum, GetParam().geographic);
    ExpectSameShift(datum, GetParam().operation);
}

INSTANTIATE_TEST_SUITE_P(Catalogue, Datums, testing::ValuesIn(DatumCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(DatumWgs84, LeavesEveryPositionAsItIs) {
    const QuorvantDatum datum = MakeDatum(1);
    ExpectSameEllipsoid(datum, 4326);
    const DatumShift shift(datum);
    for (const LonLat& point : ReferenceArea{-179, -89, 179, 89}.Points(9)) {
        EXPECT_LE(GroundDistance(shift.ToWgs84(point), point), 1e-6);
        EXPECT_LE(GroundDistance(shift.FromWgs84(point), point), 1e-6);
    }
}

TEST(StatePlaneDatums, AreTheOnesOfAlaskaHawaiiPuertoRicoAndThe48States) {
    for (const OwnDatumCase& row : OwnDatumCases) {
        SCOPED_TRACE(row.zone);
        const QuorvantDatum datum = MakeGrid(30, row.zone).Datum();
        ExpectSameEllipsoid(datum, row.geographic);
        ExpectSameShift(datum, row.operation);
    }
    for (const int zone : {101, 5002, 5101, 5200})
        EXPECT_EQ(MakeGrid(31, zone).Datum(), MakeDatum(19));
}

TEST(DatumShift, GivesTheWorkedExampleOfNewZealand) {
    const LonLat wgs84 = DatumShift(MakeDatum(13)).ToWgs84({175, -36.5});
    EXPECT_NEAR(wgs84.latitude, -(36 + 29 / 60.0 + 53.49360 / 3600), 5e-9);
    EXPECT_NEAR(wgs84.longitude, 175 + 0.66696 / 3600, 5e-9);
}
