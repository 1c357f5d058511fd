#include "component/render/ViewRenderer.h"

#include "base/ComponentError.h"
#include "base/Threads.h"
#include "component/render/ScreenPart.h"
#include "component/render/ViewPainter.h"

#include <algorithm>
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
    const auto bands = static_cast<std::size_t>((rows.Count() + RowsAtOnce - 1) / RowsAtOnce);
    ForEachOnThreads(bands, worth, [&](int, std::size_t band) {
        const std::int32_t first = rows.first + static_cast<std::int32_t>(band) * RowsAtOnce;
        painter.Paint(block, {first, std::min(first + RowsAtOnce, rows.end)}, view);
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
    bool draft = false;

    ScreenRange NextBlock(const ViewPainter& painter, std::int32_t firstRow, TileBlock& block) const;
    bool LoadInTime(const ViewRequest& request, const std::vector<ScreenPart>& parts);
    std::unique_ptr<ViewPainter> DraftPainter(const ViewRequest& request, const ScreenPart& part);
    void DrawPart(const ViewPainter& painter, Bitmap& view);
    bool Draw(const ViewRequest& request, Bitmap& view);
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

/// Whether the tiles of all parts are in the cache before the memory's patience ends.
bool ViewRenderer::State::LoadInTime(const ViewRequest& request, const std::vector<ScreenPart>& parts) {
    if (memory->Patience() <= std::chrono::milliseconds::zero())
        return true;
    const auto deadline = std::chrono::steady_clock::now() + memory->Patience();
    return std::all_of(parts.begin(), parts.end(), [&](const ScreenPart& part) {
        const auto painter = MakePainter(request, layout, part.columns, part.rows);
        TileBlock block;
        // What takes several blocks does not stay in the cache: it must be drawn block by block.
        const bool fits = NextBlock(*painter, part.rows.first, block) == part.rows;
        return !fits || loader.Load(block, deadline);
    });
}

/// From the next level if that is at hand, else from one that takes a sixteenth of the tiles.
std::unique_ptr<ViewPainter> ViewRenderer::State::DraftPainter(const ViewRequest& request,
                                                               const ScreenPart& part) {
    const int top = layout.Levels() - 1, level = LevelFor(request.zoom, layout);
    auto next = MakeDraftPainter(request, layout, std::min(level + 1, top), part.columns, part.rows);
    TileBlock block;
    NextBlock(*next, part.rows.first, block);
    if (loader.Keeps(block))
        return next;
    return MakeDraftPainter(request, layout, std::min(level + 2, top), part.columns, part.rows);
}

void ViewRenderer::State::DrawPart(const ViewPainter& painter, Bitmap& view) {
    const auto threads = static_cast<int>(memory->Decoders().size());
    for (std::int32_t row = painter.Rows().first; row < painter.Rows().end;) {
        TileBlock block;
        const ScreenRange blockRows = NextBlock(painter, row, block);
        loader.Load(block);
        PaintOnThreads(painter, block, blockRows, threads, view);
        row = blockRows.end;
    }
}

/// Answers whether it is whole; else it is a draft.
bool ViewRenderer::State::Draw(const ViewRequest& request, Bitmap& view) {
    view.width = request.width;
    view.height = request.height;
    view.pixels.resize(static_cast<std::size_t>(request.width) * static_cast<std::size_t>(request.height));
    const ScreenPart shown = ShownPart(request, layout);
    ClearOutside(view, shown);
    if (shown.IsEmpty())
        return true;
    ScreenPart kept;
    if (const ViewMemory::Picture* const former = memory->LastOf(map)) {
        kept = KeptPart(shown, request, former->request);
        CopyKept(kept, request, former->request, *former->bitmap, view);
    }
    const std::vector<ScreenPart> parts = PartsBeside(kept, shown);
    const bool whole = LevelFor(request.zoom, layout) + 1 == layout.Levels() || LoadInTime(request, parts);
    for (const ScreenPart& part : parts)
        DrawPart(whole ? *MakePainter(request, layout, part.columns, part.rows)
                       : *DraftPainter(request, part),
                 view);
    return whole && !loader.Obstacle();
}

ViewRenderer::ViewRenderer(const PyramidLayout& layout, TileSource& source,
                           std::shared_ptr<ViewMemory> memory)
    : state_(std::make_unique<State>(layout, source, std::move(memory))) {}

ViewRenderer::~ViewRenderer() {
    state_->memory->Tiles().Forget(state_->map);
}

bool ViewRenderer::IsDraft() const {
    return state_->draft;
}

bool ViewRenderer::IsObstructed() const {
    return state_->draft && state_->loader.Obstacle() != nullptr;
}

void ViewRenderer::ForgetAnswer() {
    state_->last.reset();
}

bool ViewRenderer::Render(const ViewRequest& request, std::shared_ptr<const Bitmap>& view) {
    CheckRequest(request);
    ViewMemory& memory = *state_->memory;
    state_->loader.ForgetObstacle();
    try {
        if (state_->last == request &&
            (!state_->draft || !state_->LoadInTime(request, {ShownPart(request, state_->layout)})))
            return false;
        state_->last.reset();
        state_->draft = false;
        ViewMemory::Picture& picture = memory.Next();
        state_->draft = !state_->Draw(request, *picture.bitmap);
        // Whoever waits for the final view is not served with less.
        if (state_->loader.Obstacle() && memory.Patience() <= std::chrono::milliseconds::zero())
            std::rethrow_exception(state_->loader.Obstacle());
        // What is not final is nothing to take over.
        picture.map = state_->draft ? 0 : state_->map;
        picture.request = request;
        memory.KeepNext();
        view = picture.bitmap;
    } catch (const std::bad_alloc&) {
        throw ComponentError(ErrorNumber::OutOfMemory, "There is not enough memory to show the map.");
    }
    state_->last = request;
    return true;
}
