#include "coordinates/QuorvantDatum.h"

#include "base/ComponentError.h"
#include "coordinates/Projection.h"
#include "tests/coordinates/ErrorOf.h"

#include <gtest/gtest.h>

#include <cmath>

TEST(QuorvantDatum, IsWgs84UntilToldOtherwise) {
    EXPECT_EQ(QuorvantDatum(), MakeDatum(1));
}

TEST(QuorvantDatum, AnswersToTheNineNamesAndNoOther) {
    const QuorvantDatum datum({1, 2, 3, 4, 5, 6, 7, 8, 9});
    EXPECT_EQ(datum.Property("SemiMajorAxis"), 1);
    EXPECT_EQ(datum.Property("e2"), 2);
    EXPECT_EQ(datum.Property("DeltaX"), 3);
    EXPECT_EQ(datum.Property("DeltaY"), 4);
    EXPECT_EQ(datum.Property("DeltaZ"), 5);
    EXPECT_EQ(datum.Property("RotX"), 6);
    EXPECT_EQ(datum.Property("RotY"), 7);
    EXPECT_EQ(datum.Property("RotZ"), 8);
    EXPECT_EQ(datum.Property("ScaleFactor"), 9);
    for (const char* name : {"", "E2", "e2 ", "deltaX", "ScaleFactors", "RotW"})
        EXPECT_FALSE(datum.Property(name)) << name;
}

TEST(QuorvantDatum, HasItsNumbersInTheOrderOfTheNames) {
    const QuorvantDatum datum({1, 2, 3, 4, 5, 6, 7, 8, 9});
    EXPECT_EQ(datum.SemiMajorAxis(), 1);
    EXPECT_EQ(datum.e2(), 2);
    EXPECT_EQ(datum.DeltaX(), 3);
    EXPECT_EQ(datum.DeltaY(), 4);
    EXPECT_EQ(datum.DeltaZ(), 5);
    EXPECT_EQ(datum.RotX(), 6);
    EXPECT_EQ(datum.RotY(), 7);
    EXPECT_EQ(datum.RotZ(), 8);
    EXPECT_EQ(datum.ScaleFactor(), 9);
}

TEST(MakeDatum, KnowsTheIdentifiers1To27Only) {
    for (std::int16_t identifier = 1; identifier <= 27; ++identifier)
        EXPECT_NO_THROW(MakeDatum(identifier)) << identifier;
    for (const int identifier : {-32768, -1, 0, 28, 32767})
        EXPECT_EQ(ErrorOf([&] { MakeDatum(static_cast<std::int16_t>(identifier)); }),
                  ErrorNumber::UnknownDatum)
            << identifier;
}

TEST(DatumShift, RefusesNumbersThatAreNoDatum) {
    const auto with = [](std::size_t index, double value) {
        auto numbers = QuorvantDatum().AsNumbers();
        numbers[index] = value;
        return ErrorOf([&] { DatumShift shift{QuorvantDatum(numbers)}; });
    };
    for (std::size_t i = 0; i < 9; ++i) {
        EXPECT_EQ(with(i, std::nan("")), ErrorNumber::ValueNotFinite) << i;
        EXPECT_EQ(with(i, HUGE_VAL), ErrorNumber::ValueNotFinite) << i;
    }
    EXPECT_EQ(with(0, 0), ErrorNumber::UnknownDatum);
    EXPECT_EQ(with(0, -6378137), ErrorNumber::UnknownDatum);
    EXPECT_EQ(with(1, 1), ErrorNumber::UnknownDatum);
    EXPECT_EQ(with(1, -0.1), ErrorNumber::UnknownDatum);
    EXPECT_EQ(with(1, 0), ErrorNumber{}); // a sphere is one
}

TEST(DatumShift, RefusesPositionsThatAreNotOnEarth) {
    const DatumShift shift(MakeDatum(3));
    for (const LonLat& position : {LonLat{0, 90.001}, LonLat{0, -91}, LonLat{361, 0}, LonLat{std::nan(""), 0},
                                   LonLat{0, std::nan("")}, LonLat{HUGE_VAL, 0}}) {
        EXPECT_EQ(ErrorOf([&] { shift.ToWgs84(position); }), ErrorNumber::OutsideArea);
        EXPECT_EQ(ErrorOf([&] { shift.FromWgs84(position); }), ErrorNumber::OutsideArea);
    }
}

TEST(DatumShift, TakesEveryEdgeOfTheEarth) {
    const DatumShift shift(MakeDatum(12));
    for (const double latitude : {-90.0, 0.0, 90.0}) {
        for (const double longitude : {-360.0, -180.0, 0.0, 180.0, 360.0}) {
            const LonLat answer = shift.ToWgs84({longitude, latitude});
            EXPECT_LE(std::abs(answer.longitude), 180);
            EXPECT_LE(std::abs(answer.latitude), 90);
        }
    }
}
