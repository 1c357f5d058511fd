#pragma once

#include <filesystem>

/// The absolute place of a file without symbolic links in it, so that a save replaces the file and not a link
/// to it; for a link to nothing, the place where the file would be that it promises. Where links lead round
/// in a circle, or their folders cannot be read, the path as it stands, made absolute: using it will say why.
std::filesystem::path RealPath(const std::filesystem::path& file);
