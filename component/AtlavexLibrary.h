#pragma once

#include "component/AtlavexIcon.h"
#include "component/AtlavexMap.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

class FileSystem;

/// Where the tiles of maps that are not saved yet are kept.
enum class NewTiles {
    Scratch, ///< in a private scratch file, so that the library file stays untouched until it is saved
    /// Directly in the file that was loaded, in a transaction that SaveToFile completes. Whatever ends the
    /// library before that, or a save that fails, gives up the maps and icons added since.
    LibraryFile
};

struct LibraryOptions {
    NewTiles newTiles = NewTiles::Scratch;
    std::string scratchFolder; ///< see AtlavexLibrary::SetScratchFolder
    /// For a program that works on a library for long: what is not saved yet stands in the scratch, records
    /// and all, so that it can be recovered when the program is killed (component/Recovery.h). See
    /// KeepUnsavedWork.
    bool keepUnsavedWork = false;
    int keyOperations = 3;  ///< Argon2id passes for a new key, 1 to 4
    int keyMemoryMiB = 256; ///< Argon2id memory for a new key, 8 to 512 MiB
    int threads = 0;        ///< workers inside one call; 0: one a core
    /// Milliseconds that the tiles of a view may take before a draft is shown (see AtlavexMap::ViewIsDraft);
    /// 0: as long as they take.
    int viewPatience = 0;
    /// From zoom 1 upwards a place half-way between two map pixels shows the even one, which a click there
    /// means; true: the upper one, so that whole zooms show the pixels equally wide.
    bool viewTiesUp = false;
    /// For a program that takes its turn with others: asked again and again while another program's lock
    /// stands in the way, with how long it has done so, whether to go on waiting (else FileLocked). Perhaps
    /// on another thread than the caller's, within the call; must not throw. With NewTiles::LibraryFile,
    /// LoadFromFile then takes the write lock before anything is read and holds it until the library is saved
    /// or gone. Nothing: a lock is waited for a moment only.
    std::function<bool(std::chrono::milliseconds waited)> waitForOthers;
    std::shared_ptr<FileSystem> files; ///< nothing: the operating system's
};

/// One thing that does not match its digest or cannot be read.
struct Damage {
    std::string object; ///< "Map 2 'North', level 0, row 3, column 4"
    std::string reason; ///< one sentence
};

/// What came of loading a damaged library.
struct SalvageReport {
    std::int32_t maps = 0;       ///< that were found
    std::int32_t icons = 0;      ///< likewise
    std::int64_t tiles = 0;      ///< that are as they were stored
    std::vector<Damage> damages; ///< what is not; nothing when all is sound
};

/// What came of loading unsaved work.
struct LoadedWork {
    std::vector<std::string> notes; ///< what is worth knowing, in sentences: that the file has changed since
    std::vector<std::string> missing; ///< what was there and could not be had again: "map 'North'"
};

/// One open map library. Texts are UTF-8. Positions count from 1. Maps and icons handed out stay the same
/// objects as long as the library holds them; afterwards every use of them throws NoSuchMap or NoSuchIcon.
/// One thread at a time. Every operation throws ComponentError and then leaves the library as it was.
class AtlavexLibrary {
public:
    virtual ~AtlavexLibrary() = default;

    virtual std::int32_t MapCount() const = 0;
    virtual std::int32_t IconCount() const = 0;
    /// An opaque reference, the same as long as the library is open. NoSuchMap / NoSuchIcon.
    virtual std::string MapIdAt(std::int32_t position) const = 0;
    virtual std::string IconIdAt(std::int32_t position) const = 0;
    virtual std::shared_ptr<AtlavexMap> GetMap(const std::string& reference) = 0;
    virtual std::shared_ptr<AtlavexIcon> GetIcon(const std::string& reference) = 0;

    /// Reads the image and builds its tiles. Tile sides 64 to 1024 pixels, independently. The map comes last,
    /// without identifier and metadata. Errors: see OpenImage; InvalidTileSize; Cancelled.
    virtual std::shared_ptr<AtlavexMap> AddMapFromImageFile(const std::string& file, const std::string& name,
                                                            std::int32_t tileWidth,
                                                            std::int32_t tileHeight) = 0;
    virtual std::shared_ptr<AtlavexIcon> AddIconFromImageFile(const std::string& file,
                                                              const std::string& name) = 0;
    /// Where maps and icons that are not saved yet are kept from the next one on; what is kept elsewhere
    /// stays there. Empty, not there, or no place to make a file in: the user's cache folder. What memory
    /// should not hold of an image while it is read lies in the same folder, or in the user's temporary one.
    virtual void SetScratchFolder(const std::string& folder) = 0;
    virtual void RemoveMap(const std::string& reference) = 0;
    virtual void RemoveIcon(const std::string& reference) = 0;

    /// True when the file is a library sealed under a key. Reads a flag only. Errors: FileNotFound,
    /// FileNotReadable, NotALibrary, NewerVersion, FileDamaged.
    virtual bool IsEncrypted(const std::string& file) = 0;
    /// Replaces the content by the file's. A wrong key is no error: nothing is loaded, the counts stay. The
    /// key is ignored for a plain file. Cancelled: returns with everything as before. Errors as IsEncrypted.
    virtual void LoadFromFile(const std::string& file, const std::string& key) = 0;
    /// Saves in place (file and key those that were loaded or last saved) or writes a new file that replaces
    /// the target at once. An empty key: a plain file. Any failure, Cancelled included, leaves the target as
    /// it was. Errors: FileNotWritable, DiskFull, FileChanged, FileLocked, FileDamaged.
    virtual void SaveToFile(const std::string& file, const std::string& key) = 0;
    /// What is worth knowing about the last save beside its success, in sentences; mostly nothing.
    virtual std::vector<std::string> NotesOfLastSave() const = 0;
    /// Adds the other file's maps and icons in their order behind those here; an identifier that is used
    /// already is replaced by a fresh one. A wrong key adds nothing and is no error. The file may be the one
    /// that is open here. Cancelled: returns with everything as before.
    virtual void MergeFromFile(const std::string& file, const std::string& key) = 0;
    /// Whether the last LoadFromFile or MergeFromFile could open the file: false after a wrong key.
    virtual bool KeyFitted() const = 0;

    /// With LibraryOptions::keepUnsavedWork: writes what has changed since the last time into the scratch, in
    /// one step, so that a program that is killed at any moment leaves the work as it was before or after. To
    /// be called after every change; adding, merging and removing do it by themselves. Costs what changed.
    /// Throws DiskFull, FileNotWritable: the library is as it was, and the scratch holds what it held.
    virtual void KeepUnsavedWork() {}
    /// Replaces the content by what a killed program left in a scratch, as it was in that program: the
    /// content of the file that the work belongs to (`base` where one is named, else the path in the scratch)
    /// with the unsaved changes. It is not saved; SaveToFile under the same key does that, to any name. The
    /// scratch stays, and nobody else can have it as long as the library holds it. A wrong key is no error:
    /// nothing is loaded (KeyFitted). Errors: FileLocked while a program uses the scratch, FileDamaged.
    virtual LoadedWork LoadUnsavedWork(const std::string& scratch, const std::string& key,
                                       const std::string& base) = 0;

    /// Replaces the content by all that is sound in a damaged file, which is only read: where its structure
    /// is broken, what stands in it is found page by page. It is not saved; SaveToFile under the same key
    /// does that, to another name. A wrong key is no error: nothing is loaded (KeyFitted). Of a sealed file
    /// nothing is taken that does not open under its key. Errors: FileNotFound, FileNotReadable, FileDamaged
    /// where nothing can be had.
    virtual SalvageReport SalvageFromFile(const std::string& file, const std::string& key) = 0;

    /// Ends the operation that is running (to be called from inside an event). Takes effect within 50 ms; the
    /// derivation of a key from its text (some 0.6 s) and the wait for the disk at the end of a save are
    /// finished first. What a cancelled save has written to a new file is freed behind the call: by the next
    /// save or the library's end at the latest.
    virtual void CancelOperation() = 0;

    /// Reads everything and names what is damaged; an empty answer means that all is well.
    virtual std::vector<Damage> Verify() = 0;
    /// Writes the loaded file anew without free pages.
    virtual void Compact() = 0;
    /// The file loaded or last saved; empty when there is none.
    virtual std::string FileName() const = 0;
    /// Whether that file is sealed under a key.
    virtual bool IsSealed() const = 0;

    // Raised on the caller's thread from inside load, save, compacting, merge, adding a map or an icon,
    // reading all pixels, verify and export. Amounts are in one unit, whatever it is, the same for total and
    // done. OnProgressEnd follows every OnProgressBegin, also after a failure.
    std::function<void(float total, AtlavexLibrary& library)> OnProgressBegin;
    std::function<void(float done)> OnProgress;
    std::function<void()> OnProgressEnd;
    /// Raised at the end of every adding of a map or icon, on the caller's thread: what of the image was
    /// passed over, or is shown otherwise than it is stored. One sentence each, which names the file.
    std::function<void(const std::string& sentence)> OnImageRemark;
};

/// A new, empty library.
std::unique_ptr<AtlavexLibrary> CreateAtlavexLibrary(const LibraryOptions& options = {});
