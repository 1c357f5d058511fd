#include "component/render/ScreenPart.h"

#include <algorithm>

namespace {

ScreenRange KeptRange(ScreenRange shown, std::int32_t offset, std::int32_t formerOffset,
                      std::int32_t formerSize) {
    // In 64 bits, because the offsets may be any numbers.
    const std::int64_t moved = std::int64_t{formerOffset} - offset;
    const std::int64_t first = std::clamp<std::int64_t>(moved, shown.first, shown.end);
    const std::int64_t end = std::clamp<std::int64_t>(moved + formerSize, first, shown.end);
    return {static_cast<std::int32_t>(first), static_cast<std::int32_t>(end)};
}

} // namespace

ScreenPart KeptPart(const ScreenPart& shown, const ViewRequest& request, const ViewRequest& former) {
    if (former.zoom != request.zoom)
        return {};
    return {KeptRange(shown.columns, request.left, former.left, former.width),
            KeptRange(shown.rows, request.top, former.top, former.height)};
}

std::vector<ScreenPart> PartsBeside(const ScreenPart& kept, const ScreenPart& shown) {
    if (kept.IsEmpty())
        return {shown};
    std::vector<ScreenPart> parts{
        {shown.columns, {shown.rows.first, kept.rows.first}},
        {{shown.columns.first, kept.columns.first}, kept.rows},
        {{kept.columns.end, shown.columns.end}, kept.rows},
        {shown.columns, {kept.rows.end, shown.rows.end}},
    };
    std::erase_if(parts, [](const ScreenPart& part) { return part.IsEmpty(); });
    return parts;
}

void CopyKept(const ScreenPart& kept, const ViewRequest& request, const ViewRequest& former,
              const Bitmap& from, Bitmap& to) {
    for (std::int32_t y = kept.rows.first; y < kept.rows.end; ++y) {
        const std::uint32_t* const row = from.Row(y + request.top - former.top);
        std::copy_n(row + kept.columns.first + request.left - former.left, kept.columns.Count(),
                    to.Row(y) + kept.columns.first);
    }
}
