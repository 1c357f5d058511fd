#include "coordinates/EarthPosition.h"

#include "base/ComponentError.h"
#include "base/NumberText.h"

#include <cmath>

void RequireOnEarth(const LonLat& position) {
    // Written so that NaN fails too.
    if (!(std::abs(position.latitude) <= 90))
        throw ComponentError(ErrorNumber::OutsideArea, "The latitude " + NumberToText(position.latitude) +
                                                           " is not within ±90 degrees.");
    if (!(std::abs(position.longitude) <= 360))
        throw ComponentError(ErrorNumber::OutsideArea, "The longitude " + NumberToText(position.longitude) +
                                                           " is not within ±360 degrees.");
}
