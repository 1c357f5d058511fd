#include "component/storage/Scratch.h"

#include "base/Paths.h"
#include "component/storage/Schema.h"

#include <unistd.h>

#include <cstdlib>
#include <optional>

namespace {

constexpr std::string_view NameStart = "unsaved-";
constexpr std::string_view NameEnding = ".scratch";

/// For temporary files that may be large: on a disk, unlike many a /tmp.
constexpr std::string_view LastResort = "/var/tmp";

/// The scratch file with the lock that tells others it is in use.
class ScratchFile {
public:
    ScratchFile(std::shared_ptr<FileSystem> files, std::filesystem::path path,
                std::shared_ptr<const Envelope> envelope)
        : files_(std::move(files)), path_(std::move(path)), locked_(files_->CreateLocked(path_)) {
        try {
            auto database = std::make_unique<Database>(path_, Database::Mode::Scratch, path_.string());
            CreateScratchSchema(*database);
            container_ = std::make_unique<Container>(std::move(database), std::move(envelope));
        } catch (...) { // a lack of memory, too: the destructor of what was never made does not run
            files_->Remove(path_);
            throw;
        }
    }
    ~ScratchFile() {
        container_.reset();
        files_->Remove(path_);
    }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    Container* Tiles() { return container_.get(); }

private:
    std::shared_ptr<FileSystem> files_;
    std::filesystem::path path_;
    std::unique_ptr<FileSystem::LockedFile> locked_;
    std::unique_ptr<Container> container_;
};

void SweepAbandoned(FileSystem& files, const std::filesystem::path& folder) {
    for (const std::string& name : NamesIn(folder))
        if (name.starts_with(NameStart) && name.ends_with(NameEnding))
            files.RemoveIfAbandoned(folder / name);
}

std::string UniqueName() {
    std::array<std::uint8_t, 8> random{};
    FillRandom(random);
    return std::string(NameStart) + std::to_string(getpid()) + "-" + HexText(random) +
           std::string(NameEnding);
}

std::string Environment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

} // namespace

std::filesystem::path UserCacheFolder() {
    const std::string cache = Environment("XDG_CACHE_HOME");
    const std::string home = Environment("HOME");
    std::filesystem::path folder = !cache.empty()  ? std::filesystem::path(cache)
                                   : !home.empty() ? std::filesystem::path(home) / ".cache"
                                                   : std::filesystem::temp_directory_path();
    folder /= "quorvant-studio";
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error)
        throw ComponentError(ErrorNumber::FileNotWritable, "The folder '" + folder.string() +
                                                               "' could not be made: " + error.message() +
                                                               ".");
    return folder;
}

std::shared_ptr<Container> MakeScratch(const std::shared_ptr<FileSystem>& files, const std::string& folder,
                                       std::shared_ptr<const Envelope> envelope) {
    std::optional<ComponentError> first;
    for (const std::string& candidate : {folder, std::string(), std::string(LastResort)}) {
        try {
            const std::filesystem::path place =
                candidate.empty() ? UserCacheFolder() : std::filesystem::path(candidate);
            SweepAbandoned(*files, place);
            auto file = std::make_shared<ScratchFile>(files, place / UniqueName(), envelope);
            return {file, file->Tiles()};
        } catch (const ComponentError& error) {
            if (error.Number() != ErrorNumber::FileNotWritable)
                throw;
            if (!first)
                first = error;
        }
    }
    throw ComponentError(*first);
}
