#pragma once

#include "component/Georeference.h"
#include "component/Orientation.h"

#include <array>
#include <filesystem>
#include <string_view>

/// Reads a worldfile: six finite numbers, one a line, in the order A, D, B, E, C, F, with decimal points
/// whatever the user's locale; LF or CRLF, blank lines tolerated. C and F are the centre of the upper left
/// pixel. Throws WorldfileInvalid, naming file and line, or FileNotFound / FileNotReadable.
Affine ReadWorldfile(const std::filesystem::path& file);
Affine ParseWorldfile(std::string_view text, std::string_view fileName);

/// The worldfile that lies beside an image under one of the usual names, the letters of their extensions
/// large or small; of several the first of these, for "sheet.tif": sheet.tfw, sheet.tifw, sheet.tif.wld,
/// sheet.wld.
/// ("jpeg" gives jgw, as its first and last letter do, "jpg" too.) Throws FileNotFound, with the names that
/// were looked for.
std::filesystem::path FindWorldfile(const std::filesystem::path& image);

/// The worldfile of an image as stored, expressed for the image as displayed. Width and height are those of
/// the displayed image.
Affine TurnWorldfile(const Affine& stored, Orientation orientation, std::int32_t width, std::int32_t height);

/// Three reference points of the affine map at the pixels (1, 1), (1, 100) and (100, 100), whatever the
/// image's size.
std::array<ReferencePoint, 3> WorldfilePoints(const Affine& affine);
