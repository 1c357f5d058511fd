#include "component/storage/Scratch.h"

#include "base/Paths.h"
#include "base/TemporaryFile.h"
#include "component/storage/Schema.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <optional>
#include <string_view>

namespace {

constexpr std::string_view NameStart = "unsaved-";
constexpr std::string_view NameEnding = ".scratch";

/// For temporary files that may be large: on a disk, unlike many a /tmp.
constexpr std::string_view LastResort = "/var/tmp";

std::filesystem::path JournalOf(const std::filesystem::path& scratch) {
    return scratch.string() + "-journal";
}

/// Where a link to a scratch in another folder stands, if that folder can be had.
std::optional<std::filesystem::path> LinkTo(const std::filesystem::path& scratch) {
    try {
        const std::filesystem::path folder = UserCacheFolder();
        std::error_code error;
        if (std::filesystem::equivalent(folder, scratch.parent_path(), error) || error)
            return std::nullopt;
        return folder / scratch.filename();
    } catch (const ComponentError&) {
        return std::nullopt;
    }
}

/// The next start does not know which folder was preferred this time.
void LinkFromCacheFolder(const std::filesystem::path& scratch) {
    std::error_code error; // without the link it is found by its path alone
    if (const auto link = LinkTo(scratch))
        std::filesystem::create_symlink(std::filesystem::absolute(scratch), *link, error);
}

std::unique_ptr<Database> MakeDatabase(const std::filesystem::path& path, ScratchKind kind) {
    const bool kept = kind == ScratchKind::Kept;
    auto database = std::make_unique<Database>(
        path, kept ? Database::Mode::KeptScratch : Database::Mode::Scratch, path.string());
    if (kept)
        CreateKeptScratchSchema(*database);
    else
        CreateScratchSchema(*database);
    return database;
}

/// The scratch file with the lock that tells others it is in use.
class ScratchFile {
public:
    ScratchFile(std::shared_ptr<FileSystem> files, std::filesystem::path path,
                std::shared_ptr<const Envelope> envelope, ScratchKind kind)
        : files_(std::move(files)), path_(std::move(path)), locked_(files_->CreateLocked(path_)) {
        try {
            container_ = std::make_unique<Container>(MakeDatabase(path_, kind), std::move(envelope));
            if (kind == ScratchKind::Kept)
                LinkFromCacheFolder(path_);
        } catch (...) { // a lack of memory, too: the destructor of what was never made does not run
            RemoveScratch(*files_, path_);
            throw;
        }
    }
    ~ScratchFile() {
        container_.reset();
        RemoveScratch(*files_, path_);
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

constexpr std::string_view SqliteMagic("SQLite format 3\0", 16);
constexpr std::size_t MarkAt = 63; ///< the last byte of the user_version
constexpr char Mark = 1;

using StartOfFile = std::array<char, MarkAt + 1>;

/// Of a database, read without taking part in SQLite's locks; nothing of another file.
std::optional<StartOfFile> StartOf(const std::filesystem::path& scratch) {
    const FileDescriptor file(open(scratch.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    StartOfFile start{};
    const bool isRead =
        file.IsOpen() && pread(file.Number(), start.data(), start.size(), 0) == std::ssize(start);
    const bool isDatabase = isRead && std::string_view(start.data(), start.size()).starts_with(SqliteMagic);
    return isDatabase ? std::optional(start) : std::nullopt;
}

bool HoldsUnsavedWork(const std::filesystem::path& scratch) {
    const auto start = StartOf(scratch);
    return start && start->back() == Mark;
}

std::vector<std::filesystem::path> ScratchesIn(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> scratches;
    for (const std::string& name : NamesIn(folder))
        if (name.starts_with(NameStart) && name.ends_with(NameEnding))
            scratches.push_back(folder / name);
    return scratches;
}

/// A link whose scratch has gone leads nowhere.
bool IsDeadLink(const std::filesystem::path& path) {
    std::error_code error;
    return std::filesystem::is_symlink(path, error) && !std::filesystem::exists(path, error);
}

void SweepAbandoned(FileSystem& files, const std::filesystem::path& folder) {
    for (const std::filesystem::path& scratch : ScratchesIn(folder)) {
        if (IsDeadLink(scratch))
            files.Remove(scratch);
        if (HoldsUnsavedWork(scratch))
            continue; // for whoever recovers or discards it, and nobody else
        files.RemoveIfAbandoned(scratch);
        if (!IsSomethingAt(scratch))
            files.Remove(JournalOf(scratch));
    }
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
                                       std::shared_ptr<const Envelope> envelope, ScratchKind kind) {
    std::optional<ComponentError> first;
    for (const std::string& candidate : {folder, std::string(), std::string(LastResort)}) {
        try {
            const std::filesystem::path place =
                candidate.empty() ? UserCacheFolder() : std::filesystem::path(candidate);
            SweepAbandoned(*files, place);
            auto file = std::make_shared<ScratchFile>(files, place / UniqueName(), envelope, kind);
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

void MarkUnsavedWork(Database& scratch, bool holds) {
    scratch.Execute(holds ? "PRAGMA user_version=1" : "PRAGMA user_version=0");
}

std::vector<std::filesystem::path> FindScratches() {
    std::vector<std::filesystem::path> found;
    std::vector<std::filesystem::path> folders{std::filesystem::path(LastResort)};
    try {
        folders.insert(folders.begin(), UserCacheFolder());
    } catch (const ComponentError&) {
        // There is none, and nothing in it.
    }
    for (const std::filesystem::path& folder : folders)
        for (const std::filesystem::path& scratch : ScratchesIn(folder))
            if (HoldsUnsavedWork(scratch))
                found.push_back(RealPath(scratch));
    std::ranges::sort(found);
    const auto twice = std::ranges::unique(found);
    found.erase(twice.begin(), twice.end());
    return found;
}

void RequireKeptScratch(const std::filesystem::path& file) {
    constexpr std::size_t PageSizeAt = 16;
    constexpr std::string_view ScratchPages("\x40\0", 2); // 16384, as of no library
    const auto start = StartOf(file);
    if (!start || std::string_view(start->data(), start->size()).substr(PageSizeAt, 2) != ScratchPages)
        throw ComponentError(ErrorNumber::InvalidArgument,
                             "The file '" + file.string() + "' is no scratch with unsaved work.");
}

ScratchLock::ScratchLock(const std::filesystem::path& scratch) : descriptor_(LockAbandoned(scratch)) {}

void RemoveScratch(FileSystem& files, const std::filesystem::path& scratch) noexcept {
    files.Remove(scratch);
    files.Remove(JournalOf(scratch));
    try {
        if (const auto link = LinkTo(scratch); link && IsDeadLink(*link))
            files.Remove(*link);
    } catch (const std::exception&) {
        return; // no memory for a path: a link that leads nowhere is swept later
    }
}
