#include "component/readers/GifDecoder.h"

#include "component/readers/common/ImageError.h"

#include <gif_lib.h>

#include <array>
#include <utility>

namespace {

constexpr const char* EndsInHeader = "the file ends in its header";

int ReadBytes(GifFileType* gif, GifByteType* bytes, int count) {
    auto* stream = static_cast<std::FILE*>(gif->UserData);
    return static_cast<int>(std::fread(bytes, 1, static_cast<std::size_t>(count), stream));
}

Palette ColoursOf(const ColorMapObject* map) {
    Palette colours;
    for (int index = 0; map != nullptr && index < map->ColorCount; ++index)
        colours.push_back({map->Colors[index].Red, map->Colors[index].Green, map->Colors[index].Blue, 255});
    return colours;
}

Palette Greys() {
    Palette colours(256);
    for (std::size_t grey = 0; grey < colours.size(); ++grey) {
        const auto shade = static_cast<std::uint8_t>(grey);
        colours[grey] = {shade, shade, shade, 255};
    }
    return colours;
}

/// One of the four passes in which an interlaced frame's rows are stored.
struct Pass {
    std::int32_t firstRow;
    std::int32_t step;
};

constexpr std::array Passes{Pass{0, 8}, Pass{4, 8}, Pass{2, 4}, Pass{1, 2}};

} // namespace

void GifDecoder::Close::operator()(GifFileType* gif) const {
    int error = 0;
    DGifCloseFile(gif, &error);
}

GifDecoder::GifDecoder(const std::filesystem::path& file, std::filesystem::path spoolFolder)
    : file_(file), spoolFolder_(std::move(spoolFolder)) {
    Open();
    FindFrame();
}

/// Before the pixels the library only goes over blocks.
void GifDecoder::ThrowLibraryError() const {
    const int error = gif_->Error;
    if (error == D_GIF_ERR_NOT_ENOUGH_MEM)
        ThrowImageError(ErrorNumber::OutOfMemory, file_.Path(), "there is not enough memory to decode it");
    if (std::feof(file_.Stream()) != 0)
        ThrowDamaged(file_.Path(), EndsInHeader);
    ThrowDamaged(file_.Path(), error == D_GIF_ERR_WRONG_RECORD
                                   ? "one of its blocks is of a kind that nobody knows"
                                   : "the blocks before its pixels contradict themselves");
}

void GifDecoder::Open() {
    int error = 0;
    gif_.reset(DGifOpen(file_.Stream(), ReadBytes, &error));
    if (!gif_)
        ThrowDamaged(file_.Path(), EndsInHeader);
    frame_.screenWidth = gif_->SWidth;
    frame_.screenHeight = gif_->SHeight;
}

/// Goes over the blocks up to the first frame.
void GifDecoder::FindFrame() {
    for (;;) {
        GifRecordType type{};
        if (DGifGetRecordType(gif_.get(), &type) == GIF_ERROR)
            ThrowLibraryError();
        if (type == IMAGE_DESC_RECORD_TYPE)
            return ReadFrameHeader();
        if (type == TERMINATE_RECORD_TYPE)
            ThrowDamaged(file_.Path(), "it has no frame");
        ReadExtension();
    }
}

void GifDecoder::ReadExtension() {
    int code = 0;
    GifByteType* block = nullptr;
    if (DGifGetExtension(gif_.get(), &code, &block) == GIF_ERROR)
        ThrowLibraryError();
    while (block != nullptr) {
        GraphicsControlBlock control{};
        if (code == GRAPHICS_EXT_FUNC_CODE && DGifExtensionToGCB(block[0], block + 1, &control) == GIF_OK)
            frame_.transparent = control.TransparentColor;
        if (DGifGetExtensionNext(gif_.get(), &block) == GIF_ERROR)
            ThrowLibraryError();
    }
}

/// Moves to the width of the frame's first codes, which stands behind its header and its colours, and tells
/// whether the library takes no codes so wide, though they mean something.
bool GifDecoder::HasWideCodes(std::int64_t header) {
    constexpr std::size_t HeaderBytes = 9;
    constexpr std::uint8_t HasOwnColours = 0x80;
    std::array<std::uint8_t, HeaderBytes> bytes{};
    file_.Seek(header);
    if (file_.ReadSome(bytes) < bytes.size())
        return false;
    const std::uint8_t flags = bytes.back();
    const std::int64_t colours = (flags & HasOwnColours) != 0 ? std::int64_t{3} << ((flags & 7) + 1) : 0;
    const std::int64_t start = header + std::int64_t{HeaderBytes} + colours;
    std::array<std::uint8_t, 1> width{};
    file_.Seek(start);
    const bool isWide =
        file_.ReadSome(width) == width.size() && width[0] > 8 && width[0] <= GifCodes::MostFirstWidth;
    if (isWide || std::feof(file_.Stream()) == 0)
        file_.Seek(start);
    return isWide;
}

void GifDecoder::ReadFrameHeader() {
    const std::int64_t header = std::ftell(file_.Stream());
    const int outcome = DGifGetImageHeader(gif_.get());
    const bool hasWideCodes = HasWideCodes(header);
    if (outcome == GIF_ERROR && !hasWideCodes)
        ThrowLibraryError();
    const GifImageDesc& image = gif_->Image;
    CheckImageSize(file_.Path(), image.Width, image.Height);
    frame_.left = image.Left;
    frame_.top = image.Top;
    frame_.width = image.Width;
    frame_.height = image.Height;
    frame_.interlaced = image.Interlace;
    frame_.colours = ColoursOf(image.ColorMap != nullptr ? image.ColorMap : gif_->SColorMap);
    if (frame_.colours.empty())
        frame_.colours = Greys();
    codes_.emplace(file_.Stream());
}

void GifDecoder::DecodeRow(std::uint8_t* indices, std::int32_t row) {
    const std::int32_t screenRow = frame_.top + row;
    switch (codes_->Read({indices, static_cast<std::size_t>(frame_.width)})) {
    case GifCodes::Outcome::Done:
        return;
    case GifCodes::Outcome::FileEnds:
        ThrowEndsBeforeRow(file_.Path(), screenRow);
    case GifCodes::Outcome::PixelsEnd:
        ThrowDamaged(file_.Path(), "its pixels end before row " + std::to_string(screenRow + 1));
    case GifCodes::Outcome::Contradicted:
        ThrowDamaged(file_.Path(), "its codes contradict themselves in row " + std::to_string(screenRow + 1));
    }
}

void GifDecoder::SpoolRows() {
    auto spool = std::make_unique<SpoolFile>(spoolFolder_);
    std::vector<std::uint8_t> indices(static_cast<std::size_t>(frame_.width));
    for (const Pass& pass : Passes)
        for (std::int32_t row = pass.firstRow; row < frame_.height; row += pass.step) {
            if (progress_ != nullptr)
                progress_->ThrowIfCancelled();
            DecodeRow(indices.data(), row);
            spool->Write(std::int64_t{row} * frame_.width, indices);
        }
    spool_ = std::move(spool);
}

void GifDecoder::ReadRow(std::uint8_t* indices) {
    if (frame_.interlaced) {
        if (!spool_)
            SpoolRows();
        spool_->Read(std::int64_t{row_} * frame_.width, {indices, static_cast<std::size_t>(frame_.width)});
    } else {
        DecodeRow(indices, row_);
    }
    ++row_;
}
