// A worldfile's text: six finite numbers or an error.

#include "base/ComponentError.h"
#include "component/Worldfile.h"

#include <cmath>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const Affine affine = ParseWorldfile({reinterpret_cast<const char*>(data), size}, "input.tfw");
        TurnWorldfile(affine, Orientation::RightTop, 100, 50);
        for (const ReferencePoint& point : WorldfilePoints(affine))
            if (std::isnan(point.x) || std::isnan(point.y))
                std::abort();
    } catch (const ComponentError&) {
        // The orderly answer.
    }
    return 0;
}
