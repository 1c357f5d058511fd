#include "component/render/ViewRenderer.h"

#include "base/ComponentError.h"
#include "component/render/ScreenPart.h"
#include "component/render/ShortThreads.h"
#include "component/render/ViewPainter.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <new>
#include <optional>
#include <string>
#include <utility>

namespace {

constexpr std::int32_t LargestView = 16384;

/// Below this many screen pixels a second thread costs more than it brings.
constexpr std::int64_t PixelsWorthAThread = 200000;

/// Rows that a thread paints before it asks for more.
constexpr std::int32_t RowsAtOnce = 32;

void CheckRequest(const ViewRequest& request) {
    const auto fits = [](std::int32_t side) { return side >= 1 && side <= LargestView; };
    if (!fits(request.width) || !fits(request.height))
        throw ComponentError(ErrorNumber::InvalidArgument,
                             "A view must be 1 to " + std::to_string(LargestView) + " pixels wide and high.");
    if (!std::isfinite(request.zoom) || request.zoom <= 0)
        throw ComponentError(ErrorNumber::InvalidArgument, "The zoom must be a number above 0.");
}

ScreenPart ShownPart(const ViewRequest& request, const PyramidLayout& layout) {
    return {ShownRange(request.left, request.width, layout.Width(), request.zoom),
            ShownRange(request.top, request.height, layout.Height(), request.zoom)};
}

/// Makes transparent what lies outside the shown part, which may be empty.
void ClearOutside(Bitmap& view, const ScreenPart& shown) {
    if (shown.IsEmpty()) {
        std::fill(view.pixels.begin(), view.pixels.end(), 0);
        return;
    }
    const auto [columns, rows] = shown;
    std::fill(view.Row(0), view.Row(rows.first), 0);
    for (std::int32_t y = rows.first; y < rows.end; ++y) {
        std::fill(view.Row(y), view.Row(y) + columns.first, 0);
        std::fill(view.Row(y) + columns.end, view.Row(y) + view.width, 0);
    }
    std::fill(view.Row(rows.end), view.Row(view.height), 0);
}

void PaintOnThreads(const ViewPainter& painter, const TileBlock& block, ScreenRange rows, int threads,
                    Bitmap& view) {
    const std::int64_t pixels = std::int64_t{rows.Count()} * painter.Columns().Count();
    const auto worth = static_cast<int>(std::min<std::int64_t>(threads, 1 + pixels / PixelsWorthAThread));
    std::atomic<std::int32_t> next{rows.first};
    RunOnThreads(worth, [&](int) {
        for (;;) {
            const std::int32_t first = next.fetch_add(RowsAtOnce);
            if (first >= rows.end)
                return;
            painter.Paint(block, {first, std::min(first + RowsAtOnce, rows.end)}, view);
        }
    });
}

} // namespace

struct ViewRenderer::State {
    State(PyramidLayout givenLayout, TileSource& source, std::shared_ptr<ViewMemory> givenMemory)
        : layout(std::move(givenLayout)), memory(std::move(givenMemory)), map(memory->NewMap()),
          loader(layout, source, *memory, map) {}

    PyramidLayout layout;
    std::shared_ptr<ViewMemory> memory;
    std::uint64_t map;
    TileLoader loader;
    std::optional<ViewRequest> last;

    ScreenRange NextBlock(const ViewPainter& painter, std::int32_t firstRow, TileBlock& block) const;
    void DrawPart(const ViewRequest& request, const ScreenPart& part, Bitmap& view);
    void Draw(const ViewRequest& request, Bitmap& view);
};

/// As many screen rows, from the first one on, as one block of tiles should hold; at least one.
ScreenRange ViewRenderer::State::NextBlock(const ViewPainter& painter, std::int32_t firstRow,
                                           TileBlock& block) const {
    const LevelSpan columns = painter.LevelColumns();
    block.level = painter.Level();
    block.firstColumn = columns.first / layout.TileWidth();
    block.columns = columns.last / layout.TileWidth() + 1 - block.firstColumn;
    block.firstRow = painter.LevelRows(firstRow).first / layout.TileHeight();
    const auto rowsUpTo = [&](std::int32_t screenRow) {
        return painter.LevelRows(screenRow).last / layout.TileHeight() + 1 - block.firstRow;
    };
    const auto most = static_cast<std::int64_t>(loader.LargestBlock());
    block.rows = rowsUpTo(firstRow);
    std::int32_t end = firstRow + 1;
    for (; end < painter.Rows().end; ++end) {
        const std::int32_t rows = rowsUpTo(end);
        if (rows > block.rows && std::int64_t{rows} * block.columns > most)
            break;
        block.rows = rows;
    }
    return {firstRow, end};
}

void ViewRenderer::State::DrawPart(const ViewRequest& request, const ScreenPart& part, Bitmap& view) {
    const auto painter = MakePainter(request, layout, part.columns, part.rows);
    const auto threads = static_cast<int>(memory->Decoders().size());
    for (std::int32_t row = part.rows.first; row < part.rows.end;) {
        TileBlock block;
        const ScreenRange blockRows = NextBlock(*painter, row, block);
        loader.Load(block);
        PaintOnThreads(*painter, block, blockRows, threads, view);
        row = blockRows.end;
    }
}

void ViewRenderer::State::Draw(const ViewRequest& request, Bitmap& view) {
    view.width = request.width;
    view.height = request.height;
    view.pixels.resize(static_cast<std::size_t>(request.width) * static_cast<std::size_t>(request.height));
    const ScreenPart shown = ShownPart(request, layout);
    ClearOutside(view, shown);
    if (shown.IsEmpty())
        return;
    ScreenPart kept;
    if (const ViewMemory::Picture* const former = memory->LastOf(map)) {
        kept = KeptPart(shown, request, former->request);
        CopyKept(kept, request, former->request, *former->bitmap, view);
    }
    for (const ScreenPart& part : PartsBeside(kept, shown))
        DrawPart(request, part, view);
}

ViewRenderer::ViewRenderer(const PyramidLayout& layout, TileSource& source,
                           std::shared_ptr<ViewMemory> memory)
    : state_(std::make_unique<State>(layout, source, std::move(memory))) {}

ViewRenderer::~ViewRenderer() {
    state_->memory->Tiles().Forget(state_->map);
}

bool ViewRenderer::Render(const ViewRequest& request, std::shared_ptr<const Bitmap>& view) {
    CheckRequest(request);
    if (state_->last == request)
        return false;
    state_->last.reset();
    ViewMemory& memory = *state_->memory;
    try {
        ViewMemory::Picture& picture = memory.Next();
        state_->Draw(request, *picture.bitmap);
        picture.map = state_->map;
        picture.request = request;
        memory.KeepNext();
        view = picture.bitmap;
    } catch (const std::bad_alloc&) {
        throw ComponentError(ErrorNumber::OutOfMemory, "There is not enough memory to show the map.");
    }
    state_->last = request;
    return true;
}
