#include "base/Paths.h"

#include "base/ComponentError.h"

#include <dirent.h>

#include <memory>

namespace {

/// As many as the operating system follows itself; more can only be links that change meanwhile.
constexpr int MostLinks = 40;

std::filesystem::path AsItStands(const std::filesystem::path& file) {
    std::error_code error;
    std::filesystem::path path = std::filesystem::absolute(file, error);
    return error ? file : path;
}

} // namespace

std::filesystem::path RealPath(const std::filesystem::path& file) {
    std::filesystem::path followed = file;
    for (int links = 0; links <= MostLinks; ++links) {
        std::error_code error;
        std::filesystem::path path = std::filesystem::weakly_canonical(AsItStands(followed), error);
        if (error)
            break;
        if (!std::filesystem::is_symlink(std::filesystem::symlink_status(path, error)))
            return path;
        // What is left of links here leads to nothing. A relative one counts from the folder it lies in.
        followed = path.parent_path() / std::filesystem::read_symlink(path, error);
        if (error)
            break;
    }
    return AsItStands(file);
}

std::filesystem::path FolderOf(const std::filesystem::path& file) {
    return file.has_parent_path() ? file.parent_path() : std::filesystem::path(".");
}

std::vector<std::string> NamesIn(const std::filesystem::path& folder) {
    struct Closer {
        void operator()(DIR* listing) const { closedir(listing); }
    };
    const std::unique_ptr<DIR, Closer> listing(opendir(folder.c_str()));
    std::vector<std::string> names;
    if (listing)
        while (const dirent* entry = readdir(listing.get()))
            names.emplace_back(entry->d_name);
    return names;
}

bool IsSomethingAt(const std::filesystem::path& path) {
    std::error_code unknown;
    return std::filesystem::symlink_status(path, unknown).type() != std::filesystem::file_type::not_found;
}

bool HasSecondName(const std::filesystem::path& file) {
    std::error_code unknown;
    const std::uintmax_t names = std::filesystem::hard_link_count(file, unknown);
    return !unknown && names > 1;
}

void RequireRegularFile(const std::filesystem::path& file) {
    std::error_code error;
    const auto status = std::filesystem::status(file, error);
    const std::string name = file.string();
    if (status.type() == std::filesystem::file_type::not_found)
        throw ComponentError(ErrorNumber::FileNotFound, "There is no file '" + name + "'.");
    if (error)
        throw ComponentError(ErrorNumber::FileNotReadable,
                             "The file '" + name + "' could not be opened: " + error.message() + ".");
    if (status.type() == std::filesystem::file_type::directory)
        throw ComponentError(ErrorNumber::FileNotReadable, "'" + name + "' is a folder, not a file.");
    if (status.type() != std::filesystem::file_type::regular)
        throw ComponentError(ErrorNumber::FileNotReadable, "'" + name + "' is a device, not a file.");
}
