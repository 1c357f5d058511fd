#pragma once

#include "component/AtlavexLibrary.h"
#include "component/library/IconObject.h"
#include "component/library/MapObject.h"
#include "component/storage/KnownFiles.h"
#include "component/storage/Sealing.h"
#include "component/storage/UnsavedRecords.h"
#include "component/storage/files/Disposal.h"

#include <algorithm>
#include <map>

class NewFileSave;

/// The object of a number, or the list's end. Objects stand in the order of their numbers: a library may hold
/// very many.
template <typename List, typename Number>
auto FindId(List& list, const Number& id) {
    const auto found = std::ranges::lower_bound(list, id, {}, [](const auto& object) { return object->id; });
    return found != list.end() && (*found)->id == id ? found : list.end();
}

/// A map library over its file: keeps the state in memory, the open file, and the scratch for what is not
/// saved yet.
class LibraryObject final : public AtlavexLibrary {
public:
    explicit LibraryObject(const LibraryOptions& options);
    ~LibraryObject() override;
    LibraryObject(const LibraryObject&) = delete;
    LibraryObject& operator=(const LibraryObject&) = delete;

    std::int32_t MapCount() const override { return static_cast<std::int32_t>(state_.maps.size()); }
    std::int32_t IconCount() const override { return static_cast<std::int32_t>(state_.icons.size()); }
    std::string MapIdAt(std::int32_t position) const override;
    std::string IconIdAt(std::int32_t position) const override;
    std::shared_ptr<AtlavexMap> GetMap(const std::string& reference) override;
    std::shared_ptr<AtlavexIcon> GetIcon(const std::string& reference) override;

    std::shared_ptr<AtlavexMap> AddMapFromImageFile(const std::string& file, const std::string& name,
                                                    std::int32_t tileWidth, std::int32_t tileHeight) override;
    std::shared_ptr<AtlavexIcon> AddIconFromImageFile(const std::string& file,
                                                      const std::string& name) override;
    void SetScratchFolder(const std::string& folder) override;
    void RemoveMap(const std::string& reference) override;
    void RemoveIcon(const std::string& reference) override;

    bool IsEncrypted(const std::string& file) override;
    void LoadFromFile(const std::string& file, const std::string& key) override;
    void SaveToFile(const std::string& file, const std::string& key) override;
    std::vector<std::string> NotesOfLastSave() const override { return notes_; }
    void MergeFromFile(const std::string& file, const std::string& key) override;
    bool KeyFitted() const override { return keyFitted_; }
    void KeepUnsavedWork() override;
    LoadedWork LoadUnsavedWork(const std::string& scratch, const std::string& key,
                               const std::string& base) override;
    SalvageReport SalvageFromFile(const std::string& file, const std::string& key) override;
    void CancelOperation() override { operations_->Cancel(); }

    std::vector<Damage> Verify() override;
    void Compact() override;
    std::string FileName() const override { return file_ ? file_->Path().string() : std::string(); }
    bool IsSealed() const override { return envelope_->IsSealed(); }
    /// What is worth knowing about the last save beside its success, in sentences; mostly nothing.

private:
    /// A file whose maps and icons are to be added.
    struct OtherLibrary {
        std::unique_ptr<LibraryFile> file; ///< nothing when it is the one that is open here
        LibraryState state;
    };

    void Replace(LibraryState state);
    std::shared_ptr<AtlavexMap> ImportMap(const std::string& file, const std::string& name,
                                          std::int32_t tileWidth, std::int32_t tileHeight);
    std::shared_ptr<AtlavexIcon> ImportIcon(const std::string& file, const std::string& name);
    void RaiseRemarks(const std::vector<std::string>& remarks) const;
    std::shared_ptr<AtlavexMap> Append(std::shared_ptr<MapState> map);
    std::shared_ptr<AtlavexIcon> Append(std::shared_ptr<IconState> icon);
    std::shared_ptr<const Envelope> NewEnvelope(const std::string& key) const;
    bool IsOpenFile(const std::filesystem::path& path) const;
    std::shared_ptr<Container> ContainerForNew();
    std::shared_ptr<Container> Scratch();
    bool KeepsWork() const { return options_.keepUnsavedWork && options_.newTiles == NewTiles::Scratch; }
    void Keep(const LibraryState& state);
    /// Keeps the work after a step of its own; whether it could. What stood in the way is told by the next
    /// KeepUnsavedWork.
    bool KeepQuietly(const LibraryState& state) noexcept;
    /// A content that stands in no file of its own takes the place of the present one.
    void TakeUnsaved(LibraryState state, std::shared_ptr<const Envelope> envelope, const std::string& key);
    /// Nothing is unsaved any more.
    void NoteSaved();
    UnsavedKeeper::Base BaseOfWork() const;
    LibraryState Without(std::int64_t id) const;
    void SaveHere(Progress& progress);
    /// `over` is the open file when the new one takes its place.
    void SaveAnew(const std::filesystem::path& target, LibraryFile* over,
                  std::shared_ptr<const Envelope> envelope, Progress& progress);
    /// All steps of a save to a new file, beside the open one or in its place.
    std::unique_ptr<LibraryFile> WriteElsewhere(NewFileSave& save);
    std::unique_ptr<LibraryFile> ReplaceOpenFile(NewFileSave& save);
    /// The open file's write lock, while it is as it was read; nothing where unsaved work in it holds it.
    std::unique_ptr<Transaction> LockToReplace();
    /// Another program that changed the open file may have removed tiles and pictures that are still wanted
    /// here: throws FileChanged, naming what they belong to. Returns where that is not so.
    void TellRemovedPixels(Progress& progress) const;
    void Shrink(Progress& progress);
    /// Saves a file with a second name: under this one alone, so that the other one keeps what it has.
    void WriteAnew(Progress& progress);
    void NoteKept(std::int64_t pictures);
    void RequireUnchangedFile() const;
    void FollowTiles();
    /// Whether what lies there under the key is in no file's list: removing the object frees its space.
    bool IsUnsaved(const std::shared_ptr<Container>& container, const RecordKey& key) const;
    bool IsFile(const std::shared_ptr<Container>& container) const;
    std::ptrdiff_t ObjectsIn(const std::shared_ptr<Container>& container) const;
    bool IsAloneInScratch(const std::shared_ptr<Container>& container) const;
    /// What the object held of a scratch goes back to the disk.
    template <typename Object>
    void LeaveSpace(std::shared_ptr<Object> removed) noexcept;
    /// The scratch goes with the last object in it.
    void LeaveScratch() noexcept;
    /// Lets a scratch go, at the end of an addition, that nothing came to lie in.
    class Addition {
    public:
        explicit Addition(LibraryObject& library) : library_(library) {}
        ~Addition() { library_.LeaveScratch(); }
        Addition(const Addition&) = delete;
        Addition& operator=(const Addition&) = delete;

    private:
        LibraryObject& library_;
    };
    bool IsUnsavedInFile(const std::shared_ptr<Container>& container, const RecordKey& key) const;
    void GiveUpDirectWork();
    bool OpenOther(const std::filesystem::path& path, const std::string& key, OtherLibrary& other);
    LibraryState CopyOther(const OtherLibrary& other, const std::shared_ptr<Container>& target,
                           Progress& progress);
    void MakeIdentifiersUnique(LibraryState& added) const;

    LibraryOptions options_;
    std::shared_ptr<FileSystem> files_;
    std::shared_ptr<Operations> operations_;
    std::shared_ptr<ViewMemory> views_;
    std::shared_ptr<RecentPictures> pictures_;
    LibraryState state_;
    NumberSource numbers_;
    RememberedKey key_;
    bool keyFitted_ = true;
    std::vector<std::string> notes_;
    std::shared_ptr<const Envelope> envelope_;
    std::unique_ptr<LibraryFile> file_;
    KnownFiles known_; ///< since the last load
    std::shared_ptr<Container> scratch_;
    UnsavedKeeper keeper_;
    std::unique_ptr<Transaction> direct_; ///< open while new tiles stand in the library file unsaved
    std::map<std::int64_t, std::shared_ptr<MapObject>> mapObjects_;
    std::map<std::int64_t, std::shared_ptr<IconObject>> iconObjects_;
    Disposal disposal_;
};
