#pragma once

#include "component/Bitmap.h"
#include "component/render/TileCache.h"
#include "component/render/ViewRequest.h"
#include "component/tiles/TileCodec.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

/// What the views of a library's maps share, so that maps that were looked at and left take nothing from the
/// next: decoded tiles, the decoders, and two pictures, one of which is shown while the other is drawn. For
/// one thread at a time, which also is the one that lets go of pictures.
class ViewMemory {
public:
    /// A view as it was drawn.
    struct Picture {
        std::shared_ptr<Bitmap> bitmap;
        std::uint64_t map = 0; ///< whose part it shows; 0: nobody's
        ViewRequest request;
    };

    /// Decoders for so many threads (0: one a core). When the tiles of a view take longer than the patience,
    /// a draft is drawn first; 0: never.
    explicit ViewMemory(int threads = 0, std::chrono::milliseconds patience = {}, bool tiesUp = false);

    std::chrono::milliseconds Patience() const { return patience_; }
    /// What every request of these maps says, see ViewRequest.
    bool TiesUp() const { return tiesUp_; }

    /// One for each thread; made when they are first asked for.
    std::vector<TileDecoder>& Decoders();
    TileCache& Tiles() { return tiles_; }
    /// A number for a map's tiles and pictures, never 0.
    std::uint64_t NewMap() { return ++maps_; }

    /// The picture that was kept last, when it is this map's; else null.
    const Picture* LastOf(std::uint64_t map) const;
    /// A picture that nobody looks at, and not the one kept last. Its pixels may be anything.
    Picture& Next();
    /// The next picture is drawn.
    void KeepNext();

private:
    std::size_t threads_;
    std::chrono::milliseconds patience_;
    bool tiesUp_;
    std::vector<TileDecoder> decoders_;
    TileCache tiles_{0};
    std::array<Picture, 2> pictures_;
    std::size_t last_ = 0;
    std::uint64_t maps_ = 0;
};
