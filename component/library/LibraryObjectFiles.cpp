// Loading, saving and merging: the part of a library that deals with files.

#include "base/Guid.h"
#include "base/Paths.h"
#include "component/library/LibraryObject.h"
#include "component/storage/Saving.h"
#include "component/storage/Verification.h"
#include "component/storage/files/FileReplacement.h"
#include "component/storage/files/FileRights.h"

#include <algorithm>
#include <optional>
#include <set>

namespace {

/// A cancelled load or merge is no error: the caller sees that nothing came.
void IgnoringCancel(const std::function<void()>& operation) {
    try {
        operation();
    } catch (const ComponentError& error) {
        if (error.Number() != ErrorNumber::Cancelled)
            throw;
    }
}

/// The names in a row; a sentence has room for so many only.
std::string ListOf(const std::vector<std::string>& names) {
    constexpr std::size_t MostNames = 20;
    std::string list;
    for (std::size_t i = 0; i < std::min(names.size(), MostNames); ++i)
        list += (i > 0 ? ", " : "") + names[i];
    return names.size() <= MostNames ? list
                                     : list + " and " + std::to_string(names.size() - MostNames) + " more";
}

} // namespace

bool LibraryObject::IsOpenFile(const std::filesystem::path& path) const {
    return file_ && path == file_->Path() && !file_->GetDatabase().HasMoved();
}

bool LibraryObject::IsEncrypted(const std::string& file) {
    const std::filesystem::path path = RealPath(file);
    return IsOpenFile(path) ? file_->Header().sealed : LibraryFile::IsSealed(path, options_.waitForOthers);
}

void LibraryObject::LoadFromFile(const std::string& file, const std::string& key) {
    const std::filesystem::path path = RealPath(file);
    const LibraryFile::Access access{options_.waitForOthers,
                                     options_.waitForOthers && options_.newTiles == NewTiles::LibraryFile};
    std::unique_ptr<LibraryFile> opened;
    LibraryState state;
    bool cancelled = true;
    IgnoringCancel([&] {
        operations_->Run([&](Progress& progress) {
            progress.Expect(2);
            opened = LibraryFile::Open(path, key, path.string(), access);
            progress.Add(1);
            if (opened)
                state = opened->ReadState();
            progress.ThrowIfCancelled();
            progress.Add(1);
        });
        cancelled = false;
    });
    keyFitted_ = cancelled || opened != nullptr;
    if (cancelled || !opened)
        return;
    direct_.reset();
    Replace(std::move(state));
    file_ = std::move(opened);
    direct_ = file_->HandOverLock();
    known_.Forget();
    known_.Remember(*file_);
    scratch_.reset();
    envelope_ = file_->Tiles()->SharedEnvelope();
    numbers_.Raise(file_->Header().nextNumber);
    if (envelope_->IsSealed())
        key_.Remember(key); // as it is: a choice between two texts would copy it
    else
        key_.Remember({});
    NoteSaved();
}

std::shared_ptr<const Envelope> LibraryObject::NewEnvelope(const std::string& key) const {
    if (key.empty())
        return Envelope::Plain();
    return Envelope::Sealed(key, {static_cast<std::uint32_t>(options_.keyOperations),
                                  static_cast<std::uint32_t>(options_.keyMemoryMiB) * 1024});
}

void LibraryObject::SaveToFile(const std::string& file, const std::string& key) {
    const std::filesystem::path target = RealPath(file);
    // Where the open file is gone from its name, nothing is lost by writing it there again. Not so what
    // stands in the file alone, without a scratch: whoever took the file away took that, too.
    const bool isGone = options_.newTiles == NewTiles::Scratch && !IsSomethingAt(target);
    const bool sameFile = file_ && target == file_->Path() && !isGone;
    const bool sameKey = key_.Is(key);
    notes_.clear();
    operations_->Run([&](Progress& progress) {
        if (sameFile && sameKey)
            SaveHere(progress);
        else
            SaveAnew(target, sameFile ? file_.get() : nullptr, sameKey ? envelope_ : NewEnvelope(key),
                     progress);
        // Here, where the file is known to be saved: a handler may still throw, the folder not be synced.
        key_.Remember(key);
        NoteSaved();
        if (!sameFile || !sameKey)
            SyncFolderOf(*files_, target);
    });
    FollowTiles();
}

void LibraryObject::SaveHere(Progress& progress) {
    SweepTemporaries(*files_, file_->Path());
    // A journal lies beside one name only: after a crash under that one, a save under the other would be
    // rolled away later.
    if (HasSecondName(file_->Path())) {
        WriteAnew(progress);
        return;
    }
    try {
        NoteKept(SaveInPlace(*file_, state_, numbers_, std::move(direct_), progress));
    } catch (const ComponentError&) {
        GiveUpDirectWork();
        throw;
    }
    known_.Remember(*file_);
    scratch_.reset();
    if (!IsMostlyFree(*file_) || !CanKeepOwnerAndGroup(file_->Path()))
        return;
    file_->GetDatabase().WaitNoMore(); // others may have their turn before the file gets smaller
    try {
        Shrink(progress);
    } catch (const ComponentError&) {
        // What was asked for is saved; that the file could not be made smaller, or that the user would not
        // wait for it, is no failure of the save.
    }
}

void LibraryObject::WriteAnew(Progress& progress) {
    const std::filesystem::path path = file_->Path();
    if (!CanKeepOwnerAndGroup(path)) {
        GiveUpDirectWork();
        throw ComponentError(ErrorNumber::FileNotWritable,
                             "The file '" + path.string() +
                                 "' has a second name (a hard link) and an owner or group that a new file "
                                 "cannot have.");
    }
    Shrink(progress);
}

void LibraryObject::NoteKept(std::int64_t pictures) {
    if (pictures > 0)
        notes_.push_back(
            "The file '" + file_->Path().string() + "' keeps " + std::to_string(pictures) +
            " of the pictures and directory pages of what was removed, because other maps or icons name "
            "them too, as none should.");
}

void LibraryObject::SaveAnew(const std::filesystem::path& target, LibraryFile* over,
                             std::shared_ptr<const Envelope> envelope, Progress& progress) {
    disposal_.Wait(); // the new file may need the space
    NewFileSave save(files_, {target, envelope, file_ ? file_->Header().generation + 1 : 1}, state_, numbers_,
                     progress);
    std::unique_ptr<LibraryFile> saved;
    try {
        saved = over != nullptr ? ReplaceOpenFile(save) : WriteElsewhere(save);
    } catch (const ComponentError& error) {
        if (!direct_)
            GiveUpDirectWork();
        if (error.Number() == ErrorNumber::Cancelled)
            disposal_.Dispose(save.GiveUp());
        if (error.Number() == ErrorNumber::FileDamaged)
            TellRemovedPixels(progress);
        throw;
    }
    direct_.reset();
    file_ = std::move(saved);
    known_.Remember(*file_);
    envelope_ = std::move(envelope);
    scratch_.reset();
}

std::unique_ptr<LibraryFile> LibraryObject::WriteElsewhere(NewFileSave& save) {
    save.Begin();
    save.Fill();
    save.Check();
    save.Place(FileReplacement::Former::Kept, known_);
    return save.Open();
}

std::unique_ptr<LibraryFile> LibraryObject::ReplaceOpenFile(NewFileSave& save) {
    std::unique_ptr<Transaction> lock = LockToReplace();
    save.Begin();
    save.Fill();
    save.Check();
    if (!lock) {
        // All of the unsaved work stands in the new file. Its journal must go first: it would be rolled into
        // that one.
        direct_.reset();
        lock = LockToReplace();
    }
    save.Place(FileReplacement::Former::Ours, known_);
    lock.reset();
    // Should the new file not open, the old one that is open is no longer what stands there.
    file_.reset();
    return save.Open();
}

std::unique_ptr<Transaction> LibraryObject::LockToReplace() {
    std::unique_ptr<Transaction> lock;
    if (!direct_)
        lock = std::make_unique<Transaction>(file_->GetDatabase());
    else if (!direct_->HasWritten())
        lock = std::move(direct_);
    file_->RequireUnchanged();
    return lock;
}

void LibraryObject::TellRemovedPixels(Progress& progress) const {
    if (!file_ || file_->IsUnchanged())
        return;
    progress.Expect(VerifyWork(state_));
    const std::vector<std::string> gone = ObjectsWithoutPixels(state_, *file_->Tiles(), progress);
    if (!gone.empty())
        throw ComponentError(ErrorNumber::FileChanged,
                             "The file '" + file_->Path().string() +
                                 "' was changed by another program since it was opened, and these have no "
                                 "pixels in it any more: " +
                                 ListOf(gone) + ". Delete them, then the rest can be saved.");
}

void LibraryObject::Compact() {
    if (!file_)
        throw ComponentError(ErrorNumber::FileNotFound, "The library has no file yet.");
    operations_->Run([&](Progress& progress) { Shrink(progress); });
    FollowTiles();
}

void LibraryObject::Shrink(Progress& progress) {
    const std::filesystem::path path = file_->Path();
    SaveAnew(path, file_.get(), envelope_, progress);
    SyncFolderOf(*files_, path);
}

bool LibraryObject::OpenOther(const std::filesystem::path& path, const std::string& key,
                              OtherLibrary& other) {
    // The open file is read through the connection that is there: a second one would stand in the way of
    // what is being written. Once another program has changed it, nothing is being written to it here, and
    // what this library knows of it is no longer what it holds.
    if (IsOpenFile(path) && file_->IsUnchanged()) {
        if (envelope_->IsSealed() && !key_.Is(key))
            return false;
        other.state = file_->ReadState();
        return true;
    }
    other.file = LibraryFile::Open(path, key, path.string(), {options_.waitForOthers, false});
    if (!other.file)
        return false;
    other.state = other.file->ReadState();
    return true;
}

LibraryState LibraryObject::CopyOther(const OtherLibrary& other, const std::shared_ptr<Container>& target,
                                      Progress& progress) {
    LibraryState added;
    for (const auto& map : other.state.maps) {
        auto copy = std::make_shared<MapState>(*map);
        const PyramidLayout layout = copy->record.Layout();
        TileReader reader(map->container, layout, map->record.pages, map->Name());
        copy->record.pages =
            CopyTiles(reader, *map->container, layout, map->record.pages, *target, &numbers_, progress);
        copy->container = target;
        copy->id = numbers_.Allocate();
        added.maps.push_back(std::move(copy));
    }
    for (const auto& icon : other.state.icons) {
        progress.ThrowIfCancelled();
        auto copy = std::make_shared<IconState>(*icon);
        copy->record.picture = CopyPicture(*icon, *target, &numbers_);
        copy->container = target;
        copy->id = numbers_.Allocate();
        added.icons.push_back(std::move(copy));
    }
    MakeIdentifiersUnique(added);
    return added;
}

void LibraryObject::MakeIdentifiersUnique(LibraryState& added) const {
    std::set<std::string> used;
    for (const auto& map : state_.maps)
        used.insert(map->record.identifier);
    for (const auto& map : added.maps)
        if (!map->record.identifier.empty() && !used.insert(map->record.identifier).second)
            used.insert(map->record.identifier = CreateGUID());
}

void LibraryObject::MergeFromFile(const std::string& file, const std::string& key) {
    const std::filesystem::path path = RealPath(file);
    LibraryState added;
    const Addition addition(*this);
    keyFitted_ = true;
    IgnoringCancel([&] {
        LibraryState copied;
        std::shared_ptr<Container> target;
        std::optional<Savepoint> savepoint; // kept when the events are over, too: their handlers may throw
        operations_->Run([&](Progress& progress) {
            OtherLibrary other;
            keyFitted_ = OpenOther(path, key, other);
            if (!keyFitted_ || (other.state.maps.empty() && other.state.icons.empty()))
                return;
            progress.Expect(VerifyWork(other.state));
            target = ContainerForNew();
            savepoint.emplace(target->GetDatabase());
            copied = CopyOther(other, target, progress);
        });
        if (savepoint)
            savepoint->Keep();
        added = std::move(copied);
    });
    state_.maps.insert(state_.maps.end(), added.maps.begin(), added.maps.end());
    state_.icons.insert(state_.icons.end(), added.icons.begin(), added.icons.end());
    KeepQuietly(state_);
}
