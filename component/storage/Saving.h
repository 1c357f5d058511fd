#pragma once

#include "component/storage/KnownFiles.h"
#include "component/storage/LibraryFile.h"
#include "component/storage/LibraryWriter.h"
#include "component/storage/files/FileSystem.h"

#include <functional>

/// Writes the state into the open file in one transaction: it costs what changed. `begun` is a transaction on
/// the file that has been begun already (it is committed too), or nothing. Throws FileChanged when another
/// program changed or replaced the file since it was opened. Any failure leaves the file as it was, but one:
/// when only its folder could not be made durable, FileNotWritable says so, and the state is saved. Gives how
/// many pictures and pages of removed objects were kept, because others name them too.
std::int64_t SaveInPlace(LibraryFile& file, const LibraryState& state, NumberSource& numbers,
                         std::unique_ptr<Transaction> begun, Progress& progress);

/// Whether more than a quarter of the file's pages are free.
bool IsMostlyFree(LibraryFile& file);

/// What a new file is made of.
struct NewFileRequest {
    std::filesystem::path target;
    std::shared_ptr<const Envelope> envelope;
    /// The open file when it is the one that is replaced: its write lock is held until the new one is in
    /// place, and it must be unchanged. Nothing: a file that stands at the target is kept as a .bak,
    /// unless it is one of `known`.
    LibraryFile* replaced = nullptr;
    const KnownFiles* known = nullptr;
    /// A transaction on `replaced` with unsaved work; it ends when the new file takes the file's place.
    /// Nothing: there is none.
    std::unique_ptr<Transaction>* begun = nullptr;
    std::int64_t generation = 0;
    /// Called once the new file stands at the target, before it is opened there. Must not throw.
    std::function<void()> placed = [] {};
    /// Takes what a cancelled save has written: a file without a name, perhaps large. Must not throw.
    std::function<void(std::shared_ptr<void>)> discard = [](const std::shared_ptr<void>&) {};
};

/// Builds the file beside its target, makes it durable, reads it back and puts it in place; then the state's
/// maps and icons lie in it. Gives the new file, open. A failure before `placed` leaves the target as it was.
/// To make the new name durable (SyncFolderOf) is left to the caller, once he has taken the new file over.
std::unique_ptr<LibraryFile> SaveAsNewFile(const std::shared_ptr<FileSystem>& files,
                                           const NewFileRequest& request, const LibraryState& state,
                                           NumberSource& numbers, Progress& progress);
