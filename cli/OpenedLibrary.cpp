#include "cli/OpenedLibrary.h"

#include "cli/ExitStatus.h"
#include "cli/Interrupt.h"

namespace {

std::unique_ptr<AtlavexLibrary> MakeLibrary(Access access) {
    LibraryOptions options;
    // A command ends by saving or not at all, so new tiles need no scratch file.
    options.newTiles = access == Access::Write ? NewTiles::LibraryFile : NewTiles::Scratch;
    options.viewTiesUp = true; // nobody clicks on a picture in a file
    return CreateAtlavexLibrary(options);
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

OpenedLibrary::OpenedLibrary(Access access, std::string file)
    : library_(MakeLibrary(access)), file_(std::move(file)) {
    WatchWork();
}

OpenedLibrary::OpenedLibrary(const LibraryChoice& choice, Access access)
    : OpenedLibrary(access, choice.file) {
    if (library_->IsEncrypted(file_))
        key_ = ObtainKey(choice.key, file_);
    else
        RefuseKey(choice.key, file_);
    ThrowIfInterrupted();
    library_->LoadFromFile(file_, key_.Text());
    ThrowIfInterrupted(); // a load that is broken off comes back without an error
    if (!library_->KeyFitted())
        ThrowWrongKey(file_);
    if (!library_->IsSealed()) // it may have been replaced since the first look
        RefuseKey(choice.key, file_);
}

OpenedLibrary OpenedLibrary::MakeNew() {
    return OpenedLibrary(Access::Write);
}

void OpenedLibrary::WatchWork() {
    ProgressBar* bar = progress_.get();
    AtlavexLibrary* library = library_.get();
    library_->OnProgressBegin = [bar](float total, AtlavexLibrary&) { bar->Begin(total); };
    library_->OnProgress = [bar, library](float done) {
        if (IsInterrupted())
            library->CancelOperation();
        bar->Show(done);
    };
    library_->OnProgressEnd = [bar] { bar->End(); };
}

void OpenedLibrary::Save() {
    SaveAs(file_, key_);
}

void OpenedLibrary::SaveAs(const std::string& file, const SecretText& key) {
    ThrowIfInterrupted();
    library_->SaveToFile(file, key.Text());
}
