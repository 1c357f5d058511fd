#pragma once

#include "cli/input/Places.h"
#include "component/Georeference.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

// The texts of arguments as values. Each function throws UsageError with a sentence that shows the text and
// the form that is expected. `option` names the argument in that sentence ("--tile", "X").

struct PixelSize {
    std::int32_t width = 0;
    std::int32_t height = 0;
};

struct PixelOffset {
    std::int32_t x = 0;
    std::int32_t y = 0;
};

/// A finite number with a decimal point.
double ParseNumber(std::string_view option, std::string_view text);

/// "256x128": two whole numbers above 0.
PixelSize ParseSize(std::string_view option, std::string_view text);

/// "-5,12": two whole numbers.
PixelOffset ParseOffset(std::string_view option, std::string_view text);

/// "PX,PY=X,Y": a pixel and its coordinate, in the form; the answer's is in metres or degrees. A pixel
/// between two centres is rounded to the nearest, ties to even, as a click in the editor is.
ReferencePoint ParseReferencePoint(std::string_view option, std::string_view text, const PlaceForm& form);

/// The same with the pixel as it is, a part of one or not.
MeasuredPoint ParseMeasuredPoint(std::string_view option, std::string_view text, const PlaceForm& form);

/// "KEY=VALUE", cut at the first "="; the key is not empty.
std::pair<std::string, std::string> ParseKeyValue(std::string_view text);
