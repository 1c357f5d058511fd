#include "component/storage/files/RealPath.h"

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
