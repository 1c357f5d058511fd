#pragma once

#include "base/NewFile.h"
#include "component/AtlavexImage.h"
#include "component/PixelFormat.h"

#include <cstdint>
#include <memory>
#include <span>

/// What is known of a picture before its pixels come.
struct PictureShape {
    std::int32_t width = 0;  ///< pixels, at least 1
    std::int32_t height = 0; ///< pixels, at least 1
    PixelFormat format = PixelFormat::Rgb;
    Palette palette; ///< for PixelFormat::Palette
};

/// Writes a picture row by row, so that memory does not grow with it.
class ImageWriter {
public:
    virtual ~ImageWriter() = default;
    /// The next `count` rows, width × BytesPerPixel bytes each, without gaps; over all calls as many as the
    /// picture is high. DiskFull, FileNotWritable.
    virtual void WriteRows(std::span<const std::uint8_t> rows, std::int32_t count) = 0;
    /// Completes the picture after the last row; the file is committed by its owner. Errors as WriteRows.
    virtual void Finish() = 0;
};

// The file must outlive the writer. Both throw what WriteRows throws.
// ------------------------------------------

/// Writes PNG: samples as they are, palette and transparency kept.
std::unique_ptr<ImageWriter> MakePngWriter(NewFile& file, const PictureShape& shape);

/// Writes TIFF, compressed without loss, as BigTIFF where 4 GiB may not suffice. The transparency of a
/// palette becomes a second sample beside the index, for the format knows no other place for it.
std::unique_ptr<ImageWriter> MakeTiffWriter(NewFile& file, const PictureShape& shape);

/// Whether the file's extension chooses PNG (.png), TIFF (.tif, .tiff) or nothing that can be written.
enum class PictureKind { None, Png, Tiff };
PictureKind KindOfPicture(const std::filesystem::path& file);

/// Writes the pixels of an icon or a rendered view as an RGBA PNG file, colours no longer multiplied by
/// alpha. Failed for an image whose pixels are not at hand; errors of files as NewFile throws them.
void WriteBitmapAsPng(const AtlavexImage* image, const std::filesystem::path& file);
