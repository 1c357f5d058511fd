#include "component/storage/files/FileReplacement.h"

#include "base/ComponentError.h"
#include "base/Paths.h"
#include "base/TemporaryFile.h"
#include "component/storage/files/WriteLock.h"

#include <optional>
#include <utility>

namespace {

/// Longest name that file systems take, in bytes, and what SQLite appends to it while it writes.
constexpr std::size_t LongestName = 255;
constexpr std::string_view JournalEnding = "-journal";
/// Longest part of the target's name in the temporary's: with the additions it stays below 255 bytes.
constexpr std::size_t LongestNamePart = 200;

std::string TemporaryStart(const std::filesystem::path& target) {
    return "." + target.filename().string().substr(0, LongestNamePart) + ".";
}

/// A file under a longer name could be put in place, but never be opened again.
void RequireUsableName(const std::filesystem::path& target) {
    if (target.filename().string().size() > LongestName - JournalEnding.size())
        throw ComponentError(ErrorNumber::FileNotWritable,
                             "The file '" + target.string() +
                                 "' could not be written: its name is too long.");
}

std::string NameOf(std::filesystem::file_type type) {
    using std::filesystem::file_type;
    return type == file_type::directory ? "folder"
           : type == file_type::symlink ? "link that leads nowhere"
                                        : "device";
}

/// No file is put in the place of what is no file, though a privileged user could. Links were followed
/// before: one that stands here leads nowhere.
void RequireNoDevice(const std::filesystem::path& target) {
    using std::filesystem::file_type;
    std::error_code ignored;
    const file_type type = std::filesystem::symlink_status(target, ignored).type();
    if (type != file_type::not_found && type != file_type::none && type != file_type::regular)
        throw ComponentError(ErrorNumber::FileNotWritable, "The file '" + target.string() +
                                                               "' could not be written: a " + NameOf(type) +
                                                               " has this name.");
}

} // namespace

void SweepTemporaries(FileSystem& files, const std::filesystem::path& target) {
    for (const std::filesystem::path& file : TemporariesIn(FolderOf(target), TemporaryStart(target)))
        files.RemoveIfAbandoned(file);
}

void SyncFolderOf(FileSystem& files, const std::filesystem::path& target) {
    files.SyncFolder(FolderOf(target));
}

FileReplacement::FileReplacement(std::shared_ptr<FileSystem> files, std::filesystem::path target)
    : files_(std::move(files)), target_(std::move(target)) {
    RequireUsableName(target_);
    RequireNoDevice(target_);
    SweepTemporaries(*files_, target_);
    temporary_ = FolderOf(target_) / TemporaryName(TemporaryStart(target_));
    NamingTarget([this] { locked_ = files_->CreateLocked(temporary_); });
}

void FileReplacement::NamingTarget(const std::function<void()>& step) const {
    try {
        step();
    } catch (const ComponentError& error) {
        std::string description = error.Description();
        if (const auto at = description.find(temporary_.string()); at != std::string::npos)
            description.replace(at, temporary_.string().size(), target_.string());
        throw ComponentError(error.Number(), description);
    }
}

void FileReplacement::Sync() {
    NamingTarget([this] { locked_->Sync(); });
}

FileReplacement::~FileReplacement() {
    GiveUp();
}

void FileReplacement::GiveUp() noexcept {
    if (std::exchange(isTemporary_, false))
        files_->Remove(temporary_);
}

std::filesystem::path FileReplacement::KeepFormer() {
    for (int number = 1;; ++number) {
        std::filesystem::path name = target_;
        name += ".bak" + (number > 1 ? std::to_string(number) : std::string());
        if (files_->AddName(target_, name))
            return name;
    }
}

/// A journal or log beside the target would be rolled into the new file and destroy it.
void FileReplacement::RequireNoJournal() const {
    std::error_code ignored;
    for (const char* sibling : {"-journal", "-wal"})
        if (std::filesystem::exists(target_.string() + sibling, ignored))
            throw ComponentError(ErrorNumber::FileLocked,
                                 "The file '" + target_.string() +
                                     "' is in the middle of a save by another program, or was left so: '" +
                                     target_.string() + sibling +
                                     "' belongs to it. Open it once, or choose another name.");
}

void FileReplacement::Place(Former former, const std::function<bool()>& needsNoCopy) {
    // Whoever wants to write to the target waits from here on, and then finds that it was replaced.
    std::optional<WriteLock> lock;
    if (former == Former::Kept)
        lock.emplace(target_);
    RequireNoJournal();
    locked_->CopyRightsOf(target_);
    std::error_code ignored;
    std::filesystem::path kept;
    if (former == Former::Kept &&
        std::filesystem::exists(std::filesystem::symlink_status(target_, ignored)) &&
        !(needsNoCopy && needsNoCopy()))
        kept = KeepFormer();
    try {
        RequireNoJournal(); // of a program that knows no lock, while a copy was made
        files_->Replace(temporary_, target_);
    } catch (...) {
        // A second name of a file that stays would change with it.
        if (!kept.empty())
            files_->Remove(kept);
        throw;
    }
    isTemporary_ = false;
}
