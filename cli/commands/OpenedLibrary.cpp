#include "cli/commands/OpenedLibrary.h"

#include "cli/output/ExitStatus.h"
#include "cli/output/Interrupt.h"
#include "cli/output/Output.h"

namespace {

std::unique_ptr<AtlavexLibrary> MakeLibrary(Access access, Turn& turn) {
    LibraryOptions options;
    // A command ends by saving or not at all, so new tiles need no scratch file.
    options.newTiles = access == Access::Write ? NewTiles::LibraryFile : NewTiles::Scratch;
    options.viewTiesUp = true; // nobody clicks on a picture in a file
    if (access != Access::Read)
        options.waitForOthers = [&turn](std::chrono::milliseconds waited) { return turn.GoOn(waited); };
    return CreateAtlavexLibrary(options);
}

/// Does what may have to wait for other programs; a signal that ended the wait is told as such.
template <class Work>
void InTurn(const Work& work) {
    try {
        work();
    } catch (const ComponentError& error) {
        if (error.Number() == ErrorNumber::FileLocked)
            ThrowIfInterrupted();
        throw;
    }
}

/// Whoever names a key counts on a sealed file: a plain one may have been put in its place, and what is added
/// to it would stand there for everybody to read.
void RefuseKey(const KeyOptions& key, const std::string& plainFile) {
    if (key.Given())
        throw CommandFailure(ExitStatus::WrongKey,
                             "'" + plainFile + "' is not sealed, although a key was named for it.");
}

} // namespace

void ThrowWrongKey(const std::string& file) {
    throw CommandFailure(ExitStatus::WrongKey, "The key does not open '" + file + "'.");
}

OpenedLibrary::OpenedLibrary(Access access, std::string file, const std::string& wait)
    : access_(access), turn_(std::make_unique<Turn>(file, ParseWait(wait))),
      library_(MakeLibrary(access, *turn_)), file_(std::move(file)) {
    WatchWork();
}

OpenedLibrary::OpenedLibrary(const LibraryChoice& choice, Access access)
    : OpenedLibrary(access, choice.file, choice.wait) {
    InTurn([&] { Load(choice.key); });
}

void OpenedLibrary::Load(const KeyOptions& key) {
    if (library_->IsEncrypted(file_))
        key_ = ObtainKey(key, file_);
    else
        RefuseKey(key, file_);
    LoadUnder(key_);
    if (!library_->IsSealed())
        RefuseKey(key, file_); // it may have become plain while the command waited
}

void OpenedLibrary::LoadUnder(const SecretText& key) {
    ThrowIfInterrupted();
    library_->LoadFromFile(file_, key.Text());
    ThrowIfInterrupted(); // a load that is broken off comes back without an error
    if (!library_->KeyFitted())
        ThrowWrongKey(file_);
}

void OpenedLibrary::LoadAgain() {
    library_.reset(); // lets go of the file before it is locked anew
    library_ = MakeLibrary(access_, *turn_);
    WatchWork();
    InTurn([this] { LoadUnder(key_); });
    if (!library_->IsSealed() && !key_.Empty())
        throw CommandFailure(ExitStatus::WrongKey, "'" + file_ + "' is not sealed any more.");
}

OpenedLibrary OpenedLibrary::MakeNew() {
    return OpenedLibrary(Access::Write);
}

void OpenedLibrary::WatchWork() {
    ProgressBar* bar = progress_.get();
    Turn* turn = turn_.get();
    AtlavexLibrary* library = library_.get();
    library_->OnProgressBegin = [bar](float total, AtlavexLibrary&) { bar->Begin(total); };
    library_->OnProgress = [bar, turn, library](float done) {
        if (IsInterrupted())
            library->CancelOperation();
        turn->TellIfDue();
        bar->Show(done);
    };
    library_->OnProgressEnd = [bar] { bar->End(); };
    library_->OnImageRemark = PrintMessage;
}

void OpenedLibrary::Save() {
    SaveAs(file_, key_);
}

void OpenedLibrary::SaveAs(const std::string& file, const SecretText& key) {
    ThrowIfInterrupted();
    InTurn([&] { library_->SaveToFile(file, key.Text()); });
    for (const std::string& note : library_->NotesOfLastSave())
        PrintMessage(note);
}
