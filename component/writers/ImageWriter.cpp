#include "component/ImageWriter.h"

#include <algorithm>

PictureKind KindOfPicture(const std::filesystem::path& file) {
    std::string extension = file.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    if (extension == ".png")
        return PictureKind::Png;
    return extension == ".tif" || extension == ".tiff" ? PictureKind::Tiff : PictureKind::None;
}
