#pragma once

#include "component/tiles/RowReader.h"

#include <filesystem>
#include <memory>

/// Opens an image file of any supported kind: BMP, GIF, JPEG, TIFF or PNG. The content decides the kind, not
/// the name. Grey, 8-bit palette, RGB and RGBA pixels stay as they are; 16-bit samples become round(v / 257);
/// CMYK, YCbCr and Lab are converted as the codec libraries do; signed and floating-point samples are
/// stretched between their extremes; colour profiles are not applied; Exif and TIFF orientation are. GIF: the
/// first frame on the logical screen. TIFF: the first page. Errors: FileNotFound, FileNotReadable (a folder,
/// a device, no permission), ImageNotReadable (no image, or of a kind that is not read), ImageDamaged,
/// ImageTooLarge, OutOfMemory. Pixels that memory should not hold (of interlaced, progressive, turned images)
/// go through a SpoolFile in `spoolFolder`.
std::unique_ptr<RowReader> OpenImage(const std::filesystem::path& file,
                                     const std::filesystem::path& spoolFolder = {});
