#pragma once

#include "base/Progress.h"
#include "component/PixelFormat.h"
#include "component/readers/GifCodes.h"
#include "component/readers/common/ImageFile.h"
#include "component/readers/common/SpoolFile.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct GifFileType;

/// What a GIF file says of its screen and its first frame; sizes and places in pixels, 0 to 65535.
struct GifFrame {
    std::int32_t screenWidth = 0;
    std::int32_t screenHeight = 0;
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t width = 0;  ///< at least 1
    std::int32_t height = 0; ///< at least 1
    bool interlaced = false;
    int transparent = -1; ///< the index that is transparent, or -1
    Palette colours;      ///< the frame's own or the file's; shades of grey where the file has neither
};

/// The first frame of a GIF file, by rows from the top.
class GifDecoder {
public:
    /// Reads up to the frame's pixels. An interlaced frame goes through a SpoolFile in the folder. Throws
    /// what OpenImage throws.
    GifDecoder(const std::filesystem::path& file, std::filesystem::path spoolFolder);

    const GifFrame& Frame() const { return frame_; }
    std::int64_t FileSize() const { return file_.Size(); }
    void WatchForCancel(const Progress& progress) { progress_ = &progress; }

    /// The next row, one index a pixel. Any index of 0 to 255 may occur.
    void ReadRow(std::uint8_t* indices);

private:
    struct Close {
        void operator()(GifFileType* gif) const;
    };

    void Open();
    void FindFrame();
    void ReadExtension();
    bool HasWideCodes(std::int64_t header);
    void ReadFrameHeader();
    void DecodeRow(std::uint8_t* indices, std::int32_t row);
    void SpoolRows();
    [[noreturn]] void ThrowLibraryError() const;

    ImageFile file_;
    std::unique_ptr<GifFileType, Close> gif_;
    GifFrame frame_;
    std::optional<GifCodes> codes_; ///< made when the frame's header is read
    std::int32_t row_ = 0;
    std::filesystem::path spoolFolder_;
    std::unique_ptr<SpoolFile> spool_; ///< the rows of an interlaced frame
    const Progress* progress_ = nullptr;
};
