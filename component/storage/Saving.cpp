#include "component/storage/Saving.h"

#include "component/storage/Schema.h"
#include "component/storage/Verification.h"

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
    file.Adopt(header, writer.Records());
    LibraryWriterResult result = writer.HandOverResult();
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

/// To be called under the file's write lock, before anything is written: SQLite has rolled back what had to
/// be rolled back by then, and leaves a journal that was never completed lying there.
void RemoveColdJournal(FileSystem& files, const std::filesystem::path& file) {
    files.Remove(file.string() + "-journal");
}

} // namespace

/// The new file under its temporary name.
struct NewFileSave::Building {
    Building(const std::shared_ptr<FileSystem>& files, const std::filesystem::path& target)
        : replacement(files, target) {}

    FileReplacement replacement;
    std::shared_ptr<Container> container;     ///< until it is filled
    std::unique_ptr<Transaction> transaction; ///< likewise
};

NewFileSave::NewFileSave(std::shared_ptr<FileSystem> files, Plan plan, const LibraryState& state,
                         NumberSource& numbers, Progress& progress)
    : files_(std::move(files)), plan_(std::move(plan)), state_(state), numbers_(numbers),
      progress_(progress) {
    header_.generation = plan_.generation;
}

NewFileSave::~NewFileSave() = default;

void NewFileSave::Begin() {
    progress_.Expect(NewFileWork(state_));
    building_ = std::make_shared<Building>(files_, plan_.target);
    auto database = std::make_unique<Database>(building_->replacement.Temporary(), Database::Mode::Fill,
                                               plan_.target.string());
    CreateLibrarySchema(*database);
    building_->container = std::make_shared<Container>(std::move(database), plan_.envelope);
}

void NewFileSave::Fill() {
    LibraryWriter writer(building_->container, {}, state_, numbers_);
    building_->transaction = std::make_unique<Transaction>(building_->container->GetDatabase());
    writer.Write(header_, progress_);
    building_->transaction->Commit();
    written_ = writer.HandOverResult();
    building_->transaction.reset();
    building_->container.reset();
    building_->replacement.Sync();
}

void NewFileSave::Check() {
    try {
        ReadBack();
    } catch (const ComponentError& error) {
        // The damage is that of the temporary, not of the file that stands at the target.
        if (error.Number() == ErrorNumber::FileDamaged || error.Number() == ErrorNumber::NotALibrary)
            Differs("its structure");
        throw;
    }
    progress_.ThrowIfCancelled();
}

void NewFileSave::ReadBack() {
    const auto written =
        LibraryFile::Open(building_->replacement.Temporary(), plan_.envelope, plan_.target.string());
    VerifyTiles(written->ReadState(), Depth::Stored, progress_,
                [this](const std::string& object, const std::string&) { Differs(object); });
}

void NewFileSave::Differs(const std::string& reason) {
    RequireSoundSource();
    throw ComponentError(ErrorNumber::FileNotWritable,
                         "The file '" + plan_.target.string() +
                             "' could not be written: it does not read back as it was written (" + reason +
                             ").");
}

/// Blobs are copied as they are stored, and the rot in a sealed one shows only when it is opened: then it is
/// not the new file that could not be written.
void NewFileSave::RequireSoundSource() {
    VerifyTiles(state_, Depth::Stored, progress_, [](const std::string&, const std::string& reason) {
        throw ComponentError(ErrorNumber::FileDamaged, reason);
    });
}

void NewFileSave::Place(FileReplacement::Former former, const KnownFiles& known) {
    if (former == FileReplacement::Former::Ours)
        RemoveColdJournal(*files_, plan_.target);
    building_->replacement.Place(former, [&] { return known.StillHolds(plan_.target); });
}

std::unique_ptr<LibraryFile> NewFileSave::OpenPlaced() const {
    constexpr int MostAttempts = 10;
    for (int attempt = 1;; ++attempt) {
        try {
            return LibraryFile::Open(plan_.target, plan_.envelope, plan_.target.string());
        } catch (const ComponentError& error) {
            if (error.Number() != ErrorNumber::FileChanged || attempt == MostAttempts)
                throw;
        }
    }
}

std::unique_ptr<LibraryFile> NewFileSave::Open() {
    auto file = OpenPlaced();
    // Others may have had their turn since the file was placed. This save is done all the same; that the file
    // is no longer what it left is for the next one to find out, so it is compared with what stands here.
    if (file->Holds(header_))
        file->ReadState();
    else
        file->Adopt(header_, file->Records());
    written_.Apply(file->Tiles());
    return file;
}

std::shared_ptr<void> NewFileSave::GiveUp() {
    if (building_)
        building_->replacement.GiveUp();
    return std::move(building_);
}
