#pragma once

#include "base/FileDescriptor.h"
#include "component/storage/Container.h"
#include "component/storage/files/FileSystem.h"

/// Whether a scratch has room for records beside tiles and outlives a killed program.
enum class ScratchKind { TilesOnly, Kept };

/// A private file for tiles that are not saved yet. They stand in it in the form in which they will be
/// stored, so that saving copies them as they are. It goes away with the last map that needs it; one that a
/// killed program left is swept by the next start, unless it holds unsaved work. An empty folder name means
/// the user's cache folder. Where no file can be made in the folder it is the cache folder, too, and where
/// none can be made there the system's for temporary files that outlast a start. Throws what stood in the way
/// at the first of them.
std::shared_ptr<Container> MakeScratch(const std::shared_ptr<FileSystem>& files, const std::string& folder,
                                       std::shared_ptr<const Envelope> envelope,
                                       ScratchKind kind = ScratchKind::TilesOnly);

/// The user's cache folder for this program; made when it is missing.
std::filesystem::path UserCacheFolder();

/// Marks a kept scratch as one that holds unsaved work, or takes the mark away, inside the caller's
/// transaction. The mark can be read without a key and without a database (it is the user_version), as
/// whoever sweeps does.
void MarkUnsavedWork(Database& scratch, bool holds);

/// The kept scratches of this user that hold unsaved work and can be found: in the cache folder, in folders
/// that a link there names, and in the last resort. Those of running programs too.
std::vector<std::filesystem::path> FindScratches();

/// Throws InvalidArgument for a file that is no scratch of this kind, before a database touches it: a library
/// may have been named by mistake, and its journal is not to be rolled back here.
void RequireKeptScratch(const std::filesystem::path& file);

/// The lock of a scratch that a killed program left. Nothing while another program holds it.
class ScratchLock {
public:
    explicit ScratchLock(const std::filesystem::path& scratch);
    bool IsHeld() const { return descriptor_.IsOpen(); }

private:
    FileDescriptor descriptor_;
};

/// Removes a scratch, with its journal and what leads to it.
void RemoveScratch(FileSystem& files, const std::filesystem::path& scratch) noexcept;
