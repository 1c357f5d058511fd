#pragma once

#include "component/tiles/RowReader.h"

#include <filesystem>
#include <memory>

/// Opens the first page of a TIFF or BigTIFF file of either byte order: strips or tiles, samples together or
/// in separate planes, in every compression that libtiff was built with.
///
/// Greys (1 to 16, 32 and 64 bits, floating-point too, black or white at 0) become Grey; palettes of 1 to 8
/// bits stay palettes; RGB and CMYK become Rgb, any of these with an alpha sample Rgba. Other extra samples
/// are passed over. YCbCr, L*a*b* and LogLuv are converted by libtiff. TiffSamples.h and TiffPixels.h say
/// how values are rounded. Signed and floating-point samples are stretched, for which the first ReadRows goes
/// over the whole page once before (see TiffStretch.h). The orientation is applied.
///
/// Memory: one strip of up to 2 MB (longer ones are read by rows), or one row of tiles (up to 512 MB), and a
/// strip as it is stored, for libtiff reads compressed strips whole. Errors as OpenImage.
std::unique_ptr<RowReader> OpenTiff(const std::filesystem::path& file,
                                    const std::filesystem::path& spoolFolder);
