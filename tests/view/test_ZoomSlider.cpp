// From the slider's position to the zoom and back.

#include "base/ComponentError.h"
#include "view/ZoomSlider.h"

TEST(ZoomSlider, StandsAtNoughtForFullSize) {
    EXPECT_EQ(SliderPositionOf(1.0), 0);
    EXPECT_EQ(ZoomAtSliderPosition(0), 1.0);
    EXPECT_EQ(ZoomPercentage(1.0), 100);
}

TEST(ZoomSlider, AtTenMultipliesByEAndComesBack) {
    EXPECT_EQ(ZoomAtSliderPosition(10), std::exp(1.0));
    EXPECT_EQ(ZoomPercentage(ZoomAtSliderPosition(10)), 272);
    EXPECT_EQ(SliderPositionOf(ZoomAtSliderPosition(10)), 10);
}

TEST(ZoomSlider, ComesBackToEveryPositionItOffers) {
    for (std::int32_t position = LowestSliderPosition; position <= TopSliderPosition; ++position)
        EXPECT_EQ(SliderPositionOf(ZoomAtSliderPosition(position)), position);
}

TEST(ZoomSlider, DriftsByTheShortConstantFarOut) {
    // ln(2.71828) is short of 1 by 0.67 millionths: half a position after 7,430,000.
    const double zoom = 1e300; // 10 · ln = 6907.7553, divided by ln(2.71828) 6907.7599
    EXPECT_EQ(SliderPositionOf(zoom), 6908);
    EXPECT_EQ(SliderPositionOf(std::exp(-70.0)), -700);
}

TEST(ZoomSlider, ShowsPercentagesRoundedHalfToEven) {
    EXPECT_EQ(ZoomPercentage(0.125), 12);
    EXPECT_EQ(ZoomPercentage(0.375), 38);
    EXPECT_EQ(ZoomPercentage(ZoomAtSliderPosition(TopSliderPosition)), 739);
    EXPECT_EQ(ZoomPercentage(ZoomAtSliderPosition(LowestSliderPosition)), 1);
}

TEST(ZoomSlider, RefusesWhatIsNoZoom) {
    EXPECT_THROW(ZoomAtSliderPosition(8000), ComponentError);
    EXPECT_THROW(ZoomAtSliderPosition(-8000), ComponentError);
    EXPECT_THROW(SliderPositionOf(0), ComponentError);
    EXPECT_THROW(SliderPositionOf(-1), ComponentError);
    EXPECT_THROW(ZoomPercentage(1e9), ComponentError);
}
