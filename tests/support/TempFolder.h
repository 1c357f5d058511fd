#pragma once

#include <filesystem>
#include <string>
#include <string_view>

/// A fresh folder that goes away with everything in it.
class TempFolder {
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& Path() const { return path_; }
    std::filesystem::path operator/(std::string_view name) const { return path_ / name; }

private:
    std::filesystem::path path_;
};

std::string ReadWholeFile(const std::filesystem::path& file);
void WriteWholeFile(const std::filesystem::path& file, std::string_view content);
