#pragma once

#include "component/tiles/RowReader.h"

#include <filesystem>
#include <memory>

/// Opens the first page of a TIFF or BigTIFF file of either byte order: strips or tiles, samples together or
/// in separate planes, in every compression that libtiff was built with.
///
/// Greys of unsigned samples (1 to 31, 32 and 64 bits, black or white at 0) become Grey; palettes of 1 to 8
/// bits stay palettes, those of up to 16 become Rgb; RGB, CMYK and L*a*b* (of 8 or 16 bits) become Rgb, any
/// of these with an alpha sample Rgba. Other extra samples are passed over. TiffSamples.h and TiffPixels.h
/// say how values are rounded. Signed (8 to 64 bits) and floating-point samples (16 to 64 bits) are
/// stretched, for which the first ReadRows goes over the whole page once before (see TiffStretch.h). YCbCr of
/// 8 bits becomes Rgb, as do LogLuv and old-style JPEG; LogL becomes Grey. The orientation is applied.
///
/// Memory and Cancel: strips of up to 2 MB and tiles of up to 4 MB (4 megapixels each) are unpacked as
/// wholes, in a row of tiles of up to 256 MB all beside each other. All others are unpacked row by row, and a
/// cancel is seen at every row (of WebP every few): without ever being in memory where they are stored,
/// PackBits, LZW, Deflate, ZSTD, LZMA or JPEG; as stored bytes where they are facsimile; as pixels, too,
/// where they are WebP, LERC, JBIG or logarithms. What would then need more than 448 MB is refused as
/// ImageTooLarge. Of LERC and JBIG the pixels of a whole strip or tile come at once, and a cancel waits for
/// them. Where too many tiles would be open beside each other, a row of them goes through a SpoolFile in
/// `spoolFolder`. What remains is old-style JPEG: its strips and tiles are converted as wholes and refused
/// from 64 megapixels on. Errors as OpenImage.
std::unique_ptr<RowReader> OpenTiff(const std::filesystem::path& file,
                                    const std::filesystem::path& spoolFolder);
