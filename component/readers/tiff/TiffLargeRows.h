#pragma once

#include "component/readers/tiff/TiffRows.h"

#include <filesystem>
#include <memory>

/// Rows of strips or tiles of any size and number, each of which is unpacked a row at a time. Where those
/// beside each other take too much memory while they are open, a band of them goes through a SpoolFile in the
/// folder, one block after the other.
std::unique_ptr<TiffRows> MakeLargeTiffRows(TiffFile& file, const TiffLayout& layout,
                                            const std::filesystem::path& spoolFolder);
