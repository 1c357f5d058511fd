#include "tests/faults/RecordingFiles.h"

#include "base/ComponentError.h"

namespace {

class RecordingLockedFile final : public FileSystem::LockedFile {
public:
    RecordingLockedFile(RecordingFiles& files, std::unique_ptr<LockedFile> real)
        : files_(files), real_(std::move(real)) {}

    void Sync() override {
        files_.Step("sync");
        real_->Sync();
    }
    void CopyRightsOf(const std::filesystem::path& other) override {
        files_.Step("rights");
        real_->CopyRightsOf(other);
    }

private:
    RecordingFiles& files_;
    std::unique_ptr<LockedFile> real_;
};

} // namespace

void RecordingFiles::Step(const std::string& name) {
    steps.push_back(name);
    watch(name);
    if (taken_++ == failing)
        throw ComponentError(ErrorNumber::FileNotWritable, "The step '" + name + "' was made to fail.");
}

std::unique_ptr<FileSystem::LockedFile> RecordingFiles::CreateLocked(const std::filesystem::path& file) {
    Step("create");
    return std::make_unique<RecordingLockedFile>(*this, real_->CreateLocked(file));
}

void RecordingFiles::Replace(const std::filesystem::path& from, const std::filesystem::path& to) {
    Step("replace " + to.filename().string());
    real_->Replace(from, to);
    placed();
}

bool RecordingFiles::AddName(const std::filesystem::path& file, const std::filesystem::path& name) {
    Step("name " + name.filename().string());
    return real_->AddName(file, name);
}

void RecordingFiles::SyncFolder(const std::filesystem::path& folder) {
    Step("sync folder");
    real_->SyncFolder(folder);
}

void RecordingFiles::Remove(const std::filesystem::path& file) noexcept {
    real_->Remove(file);
}

void RecordingFiles::RemoveIfAbandoned(const std::filesystem::path& file) noexcept {
    real_->RemoveIfAbandoned(file);
}
