#pragma once

#include "component/tiles/RowReader.h"

#include <filesystem>
#include <memory>

/// Turns the stored rows of `reader` for display and notes the turn in the answer's info; width and height
/// change places for the orientations 5 to 8. TopLeft gives the reader itself back.
///
/// TopRight mirrors row by row. All others keep the decoded rows in an unlinked temporary file (see
/// SpoolFile), filled at the first ReadRows, so that memory stays at two buffers of TurnBufferBytes each
/// (or one stored and one displayed row, where those are longer); the file takes width × height pixels.
/// ReadRows throws ErrorNumber::DiskFull when the temporary folder is full.
std::unique_ptr<RowReader> ApplyOrientation(std::unique_ptr<RowReader> reader, Orientation orientation,
                                            const std::filesystem::path& spoolFolder);

/// Size of each buffer of a turn, in bytes.
inline constexpr std::int64_t TurnBufferBytes = std::int64_t{16} << 20;
