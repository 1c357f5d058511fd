#pragma once

#include "component/storage/KnownFiles.h"
#include "component/storage/LibraryFile.h"
#include "component/storage/LibraryWriter.h"
#include "component/storage/files/FileReplacement.h"

/// Writes the state into the open file in one transaction: it costs what changed. `begun` is a transaction on
/// the file that has been begun already (it is committed too), or nothing. Throws FileChanged when another
/// program changed or replaced the file since it was opened. Any failure leaves the file as it was, but one:
/// when only its folder could not be made durable, FileNotWritable says so, and the state is saved. Gives how
/// many pictures and pages of removed objects were kept, because others name them too.
std::int64_t SaveInPlace(LibraryFile& file, const LibraryState& state, NumberSource& numbers,
                         std::unique_ptr<Transaction> begun, Progress& progress);

/// Whether more than a quarter of the file's pages are free.
bool IsMostlyFree(LibraryFile& file);

/// A save to a new file, which is built beside its target and then takes its place. The steps are called in
/// their order; a failure of any before Place, or of that one, leaves the target as it was.
class NewFileSave {
public:
    /// What the new file is.
    struct Plan {
        std::filesystem::path target;
        std::shared_ptr<const Envelope> envelope;
        std::int64_t generation = 0;
    };

    /// What is passed by reference must outlive the save.
    NewFileSave(std::shared_ptr<FileSystem> files, Plan plan, const LibraryState& state,
                NumberSource& numbers, Progress& progress);
    ~NewFileSave();
    NewFileSave(const NewFileSave&) = delete;
    NewFileSave& operator=(const NewFileSave&) = delete;

    /// Makes the new file under a temporary name, an empty library.
    void Begin();
    /// Writes the state into it and makes it durable.
    void Fill();
    /// Reads it back before anything is given up for it: what a full or failing disk swallowed without a word
    /// shows here.
    void Check();
    /// Puts it in the target's place: of a file whose write lock the caller holds (Ours), or of any file,
    /// which is kept as a .bak unless it is one of the known ones. To make the name durable (SyncFolderOf) is
    /// left to the caller, once he has taken the new file over.
    void Place(FileReplacement::Former former, const KnownFiles& known);
    /// Opens it there; now the state's maps and icons lie in it.
    std::unique_ptr<LibraryFile> Open();

    /// Instead of the steps that are left: the file loses its name now. To undo and free what was written
    /// takes longer, as long as what is given here lives.
    std::shared_ptr<void> GiveUp();

private:
    struct Building;
    void ReadBack();
    std::unique_ptr<LibraryFile> OpenPlaced() const;
    [[noreturn]] void Differs(const std::string& reason);
    void RequireSoundSource();

    std::shared_ptr<FileSystem> files_;
    Plan plan_;
    const LibraryState& state_;
    NumberSource& numbers_;
    Progress& progress_;
    FileHeader header_;
    LibraryWriterResult written_;
    std::shared_ptr<Building> building_;
};
