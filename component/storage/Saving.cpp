#include "component/storage/Saving.h"

#include "component/storage/Schema.h"
#include "component/storage/Verification.h"
#include "component/storage/files/FileReplacement.h"

#include <optional>

namespace {

/// A failed commit is one thing, a commit whose folder could not be made durable another: SQLite reports an
/// error for both, but in the second case the new state stands in the file. Gives the reason then.
std::optional<std::string> Commit(LibraryFile& file, Transaction& transaction, const FileHeader& header) {
    try {
        transaction.Commit();
        return std::nullopt;
    } catch (const ComponentError& error) {
        if (file.GetDatabase().InTransaction() || !file.Holds(header))
            throw;
        return error.Description();
    }
}

} // namespace

std::int64_t SaveInPlace(LibraryFile& file, const LibraryState& state, NumberSource& numbers,
                         std::unique_ptr<Transaction> begun, Progress& progress) {
    if (!begun) {
        begun = std::make_unique<Transaction>(file.GetDatabase());
        file.RequireUnchanged();
    } else if (file.GetDatabase().HasMoved()) {
        file.RequireUnchanged();
    }
    LibraryWriter writer(file.Tiles(), file.Records(), state, numbers);
    progress.Expect(writer.Work());
    FileHeader header = file.Header();
    ++header.generation;
    writer.Write(header, progress);
    const std::optional<std::string> notDurable = Commit(file, *begun, header);
    file.Saved(header, writer.Records());
    LibraryWriterResult result = writer.TakeResult();
    result.Apply(file.Tiles());
    if (notDurable)
        throw ComponentError(ErrorNumber::FileNotWritable,
                             "The file '" + file.Path().string() +
                                 "' is saved, but may hold its former state again after a power failure. (" +
                                 *notDurable + ")");
    return result.keptForOthers;
}

bool IsMostlyFree(LibraryFile& file) {
    return file.GetDatabase().Number("PRAGMA freelist_count") * 4 >
           file.GetDatabase().Number("PRAGMA page_count");
}

namespace {

std::int64_t NewFileWork(const LibraryState& state) {
    auto work = static_cast<std::int64_t>(1 + state.maps.size() + state.icons.size());
    for (const auto& map : state.maps)
        work += 2 * map->record.Layout().Entries(); // written, then read back
    return work;
}

/// The new file while it is built under its temporary name.
struct Filling {
    Filling(const std::shared_ptr<FileSystem>& files, const std::filesystem::path& target)
        : replacement(files, target) {}

    FileReplacement replacement;
    std::shared_ptr<Container> container;
    std::unique_ptr<Transaction> transaction;
};

/// Fills the temporary and closes it again; gives the header that it has now.
FileHeader Fill(Filling& filling, const NewFileRequest& request, LibraryWriterResult& result,
                const LibraryState& state, NumberSource& numbers, Progress& progress) {
    auto database = std::make_unique<Database>(filling.replacement.Temporary(), Database::Mode::Fill,
                                               request.target.string());
    CreateLibrarySchema(*database);
    filling.container = std::make_shared<Container>(std::move(database), request.envelope);
    LibraryWriter writer(filling.container, {}, state, numbers);
    FileHeader header;
    header.generation = request.generation;
    filling.transaction = std::make_unique<Transaction>(filling.container->GetDatabase());
    writer.Write(header, progress);
    filling.transaction->Commit();
    result = writer.TakeResult();
    filling.transaction.reset();
    filling.container.reset();
    return header;
}

/// A cancelled file loses its name now; to undo and free what was written takes longer.
void DiscardCancelled(std::shared_ptr<Filling> filling, const NewFileRequest& request) {
    filling->replacement.GiveUp();
    request.discard(std::move(filling));
}

/// Blobs are copied as they are stored, and the rot in a sealed one shows only when it is opened: then it is
/// not the new file that could not be written.
void RequireSoundSource(const LibraryState& state, Progress& progress) {
    VerifyTiles(state, Depth::Stored, progress, [](const std::string&, const std::string& reason) {
        throw ComponentError(ErrorNumber::FileDamaged, reason);
    });
}

/// Reads the new file back before anything is given up for it: what a full or failing disk swallowed without
/// a word shows here.
void ReadBack(const FileReplacement& replacement, const NewFileRequest& request, const LibraryState& state,
              Progress& progress) {
    const auto differs = [&](const std::string& reason) {
        RequireSoundSource(state, progress);
        throw ComponentError(ErrorNumber::FileNotWritable,
                             "The file '" + request.target.string() +
                                 "' could not be written: it does not read back as it was written (" +
                                 reason + ").");
    };
    try {
        const auto written =
            LibraryFile::Open(replacement.Temporary(), request.envelope, request.target.string());
        VerifyTiles(written->ReadState(), Depth::Stored, progress,
                    [&](const std::string& object, const std::string&) { differs(object); });
    } catch (const ComponentError& error) {
        // The damage is that of the temporary, not of the file that stands at the target.
        if (error.Number() == ErrorNumber::FileDamaged || error.Number() == ErrorNumber::NotALibrary)
            differs("its structure");
        throw;
    }
}

/// To be called under the file's write lock, before anything is written: SQLite has rolled back what had to
/// be rolled back by then, and leaves a journal that was never completed lying there.
void RemoveColdJournal(FileSystem& files, const std::filesystem::path& file) {
    files.Remove(file.string() + "-journal");
}

} // namespace

std::unique_ptr<LibraryFile> SaveAsNewFile(const std::shared_ptr<FileSystem>& files,
                                           const NewFileRequest& request, const LibraryState& state,
                                           NumberSource& numbers, Progress& progress) {
    progress.Expect(NewFileWork(state));
    std::unique_ptr<Transaction> held;
    if (request.replaced != nullptr) {
        if (request.begun == nullptr || !*request.begun)
            held = std::make_unique<Transaction>(request.replaced->GetDatabase());
        else if (!(*request.begun)->HasWritten())
            held = std::move(*request.begun);
        request.replaced->RequireUnchanged();
    }
    auto filling = std::make_shared<Filling>(files, request.target);
    FileReplacement& replacement = filling->replacement;
    LibraryWriterResult result;
    FileHeader header;
    try {
        header = Fill(*filling, request, result, state, numbers, progress);
        replacement.Sync();
        ReadBack(replacement, request, state, progress);
        progress.ThrowIfCancelled();
    } catch (const ComponentError& error) {
        if (error.Number() == ErrorNumber::Cancelled)
            DiscardCancelled(std::move(filling), request);
        throw;
    }
    if (request.replaced != nullptr && !held) {
        // All of it stands in the new file. Its journal must go first: it would be rolled into that one.
        request.begun->reset();
        held = std::make_unique<Transaction>(request.replaced->GetDatabase());
        request.replaced->RequireUnchanged();
    }
    if (held)
        RemoveColdJournal(*files, request.target);
    replacement.TakePlace(
        request.replaced == nullptr ? FileReplacement::Former::Kept : FileReplacement::Former::Ours,
        [&] { return request.known != nullptr && request.known->StillHolds(request.target); });
    held.reset();
    request.placed();
    auto file = LibraryFile::Open(request.target, request.envelope, request.target.string());
    if (!file->Holds(header))
        file->RequireUnchanged();
    file->ReadState();
    result.Apply(file->Tiles());
    return file;
}
