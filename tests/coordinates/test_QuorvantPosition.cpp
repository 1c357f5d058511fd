#include "coordinates/QuorvantPosition.h"

#include "tests/coordinates/ErrorOf.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

void ExpectParts(const AngleParts& parts, int degrees, int minutes, double seconds) {
    EXPECT_EQ(parts.degrees, degrees);
    EXPECT_EQ(parts.minutes, minutes);
    EXPECT_NEAR(parts.seconds, seconds, 1e-9);
}

} // namespace

TEST(QuorvantPosition, BeginsAtZeroNorthAndEast) {
    const QuorvantPosition position;
    EXPECT_EQ(position.Longitude(), 0);
    EXPECT_EQ(position.Latitude(), 0);
    EXPECT_EQ(position.LongitudeHemisphere(), 'E');
    EXPECT_EQ(position.LatitudeHemisphere(), 'N');
}

TEST(QuorvantPosition, SplitsIntoUnsignedPartsAndAHemisphere) {
    const QuorvantPosition position(-122.5125, 37.755);
    ExpectParts(position.LongitudeParts(), 122, 30, 45);
    ExpectParts(position.LatitudeParts(), 37, 45, 18);
    EXPECT_EQ(position.LongitudeHemisphere(), 'W');
    EXPECT_EQ(position.LatitudeHemisphere(), 'N');
}

TEST(QuorvantPosition, KeepsTheSignWhenDegreesAreZero) {
    QuorvantPosition position(0, -0.5);
    ExpectParts(position.LatitudeParts(), 0, 30, 0);
    EXPECT_EQ(position.LatitudeHemisphere(), 'S');
    position.SetLatitudeParts(0, 15, 0, 'S');
    EXPECT_EQ(position.Latitude(), -0.25);
    position.SetLongitudeParts(0, 0, 36, 'W');
    EXPECT_EQ(position.Longitude(), -0.01);
}

TEST(QuorvantPosition, MovesToTheOtherHemisphereAndBack) {
    QuorvantPosition position(12.5, 0.25);
    position.SetLatitudeHemisphere('S');
    position.SetLongitudeHemisphere('W');
    EXPECT_EQ(position.Latitude(), -0.25);
    EXPECT_EQ(position.Longitude(), -12.5);
    position.SetLatitudeHemisphere('S');
    EXPECT_EQ(position.Latitude(), -0.25);
    position.SetLatitudeHemisphere('N');
    position.SetLongitudeHemisphere('E');
    EXPECT_EQ(position.Latitude(), 0.25);
    EXPECT_EQ(position.Longitude(), 12.5);
}

TEST(QuorvantPosition, HasNoNegativeZero) {
    QuorvantPosition position(0, 0);
    position.SetLatitudeHemisphere('S');
    position.SetLongitudeParts(0, 0, 0, 'W');
    EXPECT_FALSE(std::signbit(position.Latitude()));
    EXPECT_FALSE(std::signbit(position.Longitude()));
    position.SetLatitude(-0.0);
    EXPECT_FALSE(std::signbit(position.Latitude()));
    EXPECT_EQ(position.LatitudeHemisphere(), 'N');
}

TEST(QuorvantPosition, KeepsTheHemisphereThatWasChosenAtZero) {
    QuorvantPosition position;
    position.SetLatitudeHemisphere('S');
    position.SetLongitudeParts(0, 0, 0, 'W');
    EXPECT_EQ(position.LatitudeHemisphere(), 'S');
    EXPECT_EQ(position.LongitudeHemisphere(), 'W');
    EXPECT_EQ(position.LatitudeText(AngleFormat::DegreesMinutesSeconds), "0° 0' 0.000\" S");
    EXPECT_EQ(position.LatitudeText(AngleFormat::DecimalDegrees), "0.0000000");
    position.SetLongitudeHemisphere('E');
    EXPECT_EQ(position.LongitudeHemisphere(), 'E');
    position.SetLongitudeParts(-0.0, 0, 0, 'E'); // "-0", of which the minutes are still to come
    EXPECT_EQ(position.LongitudeHemisphere(), 'W');
    position.SetLatitudeHemisphere('N');
    EXPECT_EQ(position.LatitudeHemisphere(), 'N');
}

TEST(QuorvantPosition, NeverShows60MinutesOrSeconds) {
    for (const double degrees : {12.99999999999, 13 - 1e-13, std::nextafter(13.0, 0), std::nextafter(1.0, 0),
                                 12.1, 59.983333333333334, 89.99999999999999, std::nextafter(0.1, 0)}) {
        const AngleParts parts = QuorvantPosition(0, degrees).LatitudeParts();
        EXPECT_LT(parts.minutes, 60) << degrees;
        EXPECT_LT(parts.seconds, 60) << degrees;
        EXPECT_NEAR(parts.degrees + parts.minutes / 60.0 + parts.seconds / 3600, degrees, 1e-12);
        const AngleParts rounded = RoundSeconds(parts, 3);
        EXPECT_LT(rounded.minutes, 60) << degrees;
        EXPECT_LT(rounded.seconds, 60) << degrees;
    }
    EXPECT_EQ(RoundSeconds(QuorvantPosition(0, 12.99999999999).LatitudeParts(), 3), (AngleParts{13, 0, 0}));
    EXPECT_EQ(RoundSeconds(QuorvantPosition(0, 12.1).LatitudeParts(), 3), (AngleParts{12, 6, 0}));
}

TEST(RoundSeconds, RoundsHalfToEvenAndCarries) {
    EXPECT_EQ(RoundSeconds({1, 2, 3.0625}, 3), (AngleParts{1, 2, 3.062}));
    EXPECT_EQ(RoundSeconds({1, 2, 2.5}, 0), (AngleParts{1, 2, 2}));
    EXPECT_EQ(RoundSeconds({1, 2, 3.5}, 0), (AngleParts{1, 2, 4}));
    EXPECT_EQ(RoundSeconds({1, 2, 59.9996}, 3), (AngleParts{1, 3, 0}));
    EXPECT_EQ(RoundSeconds({1, 59, 59.9996}, 3), (AngleParts{2, 0, 0}));
    EXPECT_EQ(RoundSeconds({1, 59, 59.9994}, 3), (AngleParts{1, 59, 59.999}));
    EXPECT_EQ(ErrorOf([] { RoundSeconds({}, -1); }), ErrorNumber::InvalidArgument);
    EXPECT_EQ(ErrorOf([] { RoundSeconds({}, 10); }), ErrorNumber::InvalidArgument);
}

TEST(QuorvantPosition, GivesBackAnyAngleFromItsParts) {
    std::mt19937_64 random(34);
    std::uniform_real_distribution<double> angles(-180, 180);
    for (int i = 0; i < 100000; ++i) {
        const QuorvantPosition position(angles(random), 0);
        const AngleParts parts = position.LongitudeParts();
        QuorvantPosition again;
        again.SetLongitudeParts(parts.degrees, parts.minutes, parts.seconds, position.LongitudeHemisphere());
        ASSERT_NEAR(again.Longitude(), position.Longitude(), 1e-13);
    }
}

TEST(QuorvantPosition, NormalisesMinutesAndSecondsBeyond60) {
    QuorvantPosition position;
    position.SetLatitudeParts(10, 75, 90, 'N');
    ExpectParts(position.LatitudeParts(), 11, 16, 30);
    position.SetLongitudeParts(0, 0, 7200, 'W');
    ExpectParts(position.LongitudeParts(), 2, 0, 0);
    EXPECT_EQ(position.LongitudeHemisphere(), 'W');
}

TEST(QuorvantPosition, NormalisesNegativeParts) {
    QuorvantPosition position;
    position.SetLatitudeParts(10, -15, 0, 'N'); // borrows
    EXPECT_EQ(position.Latitude(), 9.75);
    position.SetLatitudeParts(-12, 30, 0, 'N'); // 12° 30' on the other side
    EXPECT_EQ(position.Latitude(), -12.5);
    position.SetLatitudeParts(-12, 30, 0, 'S');
    EXPECT_EQ(position.Latitude(), 12.5);
    position.SetLongitudeParts(0, -30, 0, 'E');
    EXPECT_EQ(position.Longitude(), -0.5);
    EXPECT_EQ(position.LongitudeHemisphere(), 'W');
}

TEST(QuorvantPosition, RefusesWhatIsNotOnEarthAndKeepsWhatItHad) {
    QuorvantPosition position(12.5, 55.25);
    for (const double latitude : {90.0000001, -91.0, std::nan(""), HUGE_VAL})
        EXPECT_EQ(ErrorOf([&] { position.SetLatitude(latitude); }), ErrorNumber::OutsideArea);
    for (const double longitude : {360.0000001, -361.0, std::nan(""), -HUGE_VAL})
        EXPECT_EQ(ErrorOf([&] { position.SetLongitude(longitude); }), ErrorNumber::OutsideArea);
    EXPECT_EQ(ErrorOf([&] { position.SetLatitudeParts(90, 0, 1, 'N'); }), ErrorNumber::OutsideArea);
    EXPECT_EQ(ErrorOf([&] { position.SetLatitudeParts(89, 60, 1, 'S'); }), ErrorNumber::OutsideArea);
    EXPECT_EQ(ErrorOf([&] { position.SetLongitudeParts(1e308, 1e308, 0, 'E'); }), ErrorNumber::OutsideArea);
    EXPECT_EQ(ErrorOf([&] { position.SetLongitudeParts(10, std::nan(""), 0, 'E'); }),
              ErrorNumber::OutsideArea);
    EXPECT_EQ(position.Longitude(), 12.5);
    EXPECT_EQ(position.Latitude(), 55.25);
    position.SetLatitude(-90);
    position.SetLongitude(360);
    EXPECT_EQ(position.Latitude(), -90);
    EXPECT_EQ(position.Longitude(), 360);
}

TEST(QuorvantPosition, RefusesOtherHemisphereLetters) {
    QuorvantPosition position(12.5, 55.25);
    for (const char letter : {'E', 'W', 'n', 's', ' ', '\0'})
        EXPECT_EQ(ErrorOf([&] { position.SetLatitudeHemisphere(letter); }), ErrorNumber::InvalidArgument);
    for (const char letter : {'N', 'S', 'e', 'w', ' '})
        EXPECT_EQ(ErrorOf([&] { position.SetLongitudeParts(1, 2, 3, letter); }),
                  ErrorNumber::InvalidArgument);
    EXPECT_EQ(position.Longitude(), 12.5);
    EXPECT_EQ(position.Latitude(), 55.25);
}

TEST(QuorvantPosition, WritesItselfInBothFormats) {
    const QuorvantPosition position(-0.5, 12.99999999999);
    EXPECT_EQ(position.LongitudeText(AngleFormat::DecimalDegrees), "-0.5000000");
    EXPECT_EQ(position.LatitudeText(AngleFormat::DecimalDegrees), "13.0000000");
    EXPECT_EQ(position.LongitudeText(AngleFormat::DegreesMinutesSeconds), "0° 30' 0.000\" W");
    EXPECT_EQ(position.LatitudeText(AngleFormat::DegreesMinutesSeconds), "13° 0' 0.000\" N");
    EXPECT_EQ(QuorvantPosition(-1e-9, 0).LongitudeText(AngleFormat::DecimalDegrees), "0.0000000");
}
