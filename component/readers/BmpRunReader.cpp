#include "component/readers/BmpRunReader.h"

#include "component/readers/BmpRunDecoder.h"
#include "component/readers/common/ImageError.h"

BmpRunReader::BmpRunReader(ImageFile file, const BmpHeader& header, std::filesystem::path spoolFolder)
    : file_(std::move(file)), header_(header), spoolFolder_(std::move(spoolFolder)) {
    info_.width = header.width;
    info_.height = header.height;
    info_.format = header.bits == 24 ? PixelFormat::Rgb : PixelFormat::Palette;
    info_.palette = header.palette;
    CheckPixelsPerByte(file_.Path(), std::int64_t{header.width} * header.height, file_.Size());
}

void BmpRunReader::SpoolRows() {
    auto spool = std::make_unique<SpoolFile>(spoolFolder_);
    BmpRunDecoder decoder(file_, header_);
    do {
        ThrowIfCancelled();
    } while (decoder.DecodeRow(*spool));
    spool_ = std::move(spool);
}

void BmpRunReader::ReadRows(std::uint8_t* rows, std::ptrdiff_t stride, std::int32_t count) {
    if (!spool_)
        SpoolRows();
    const std::int64_t rowBytes = std::int64_t{info_.width} * BytesPerPixel(info_.format);
    for (std::int32_t done = 0; done < count; ++done, ++row_, rows += stride) {
        const std::int64_t stored = header_.downwards ? row_ : info_.height - 1 - row_;
        spool_->Read(stored * rowBytes, {rows, static_cast<std::size_t>(rowBytes)});
    }
}
