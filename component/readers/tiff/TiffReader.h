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
/// stretched, for which the first ReadRows goes over the whole page once before (see TiffStretch.h). YCbCr,
/// LogL, LogLuv and old-style JPEG are converted by libtiff. The orientation is applied.
///
/// Memory and Cancel: strips of up to 2 MB and tiles of up to 4 MB (4 megapixels each) are unpacked as
/// wholes, in a row of tiles all beside each other. Larger ones are unpacked row by row: tiles, and strips of
/// more than 16 MB as they are stored, without ever being in memory, where they are stored, PackBits, LZW,
/// Deflate or ZSTD without a predictor or with differences; strips of other coders from their stored bytes,
/// which libtiff reads whole. A cancel is seen at every row. What remains are larger tiles in other coders
/// (facsimile, JPEG, LZMA, WebP, LERC, floating-point differences): a cancel is seen between them, a row of
/// them is refused from 512 MB on; and strips or tiles of the colours that libtiff converts, refused from 64
/// megapixels on. Errors as OpenImage.
std::unique_ptr<RowReader> OpenTiff(const std::filesystem::path& file,
                                    const std::filesystem::path& spoolFolder);
