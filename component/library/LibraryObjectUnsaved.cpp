// What is kept of a library that is not saved, and how a library is made of it again.

#include "base/Paths.h"
#include "component/Recovery.h"
#include "component/library/LibraryObject.h"
#include "component/library/Salvage.h"
#include "component/storage/Scratch.h"
#include "component/storage/UnsavedRebuild.h"

#include <algorithm>
#include <utility>

UnsavedKeeper::Base LibraryObject::BaseOfWork() const {
    if (file_)
        return {file_->Path().string(), file_->Row()};
    FileHeader header;
    envelope_->Describe(header);
    UnsavedKeeper::Base base;
    base.row.header = header.Encode();
    base.row.mac = envelope_->MacOf(base.row.header);
    return base;
}

void LibraryObject::Keep(const LibraryState& state) {
    if (!KeepsWork())
        return;
    if (keeper_.IsUnsaved(state))
        Scratch();
    keeper_.Keep(state, BaseOfWork(), numbers_.Next());
    LeaveScratch(); // it may have been there for changes that were taken back
}

void LibraryObject::KeepUnsavedWork() {
    Keep(state_);
}

bool LibraryObject::KeepQuietly(const LibraryState& state) noexcept {
    try {
        Keep(state);
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

void LibraryObject::NoteSaved() {
    if (KeepsWork())
        keeper_.Saved(state_);
}

LibraryState LibraryObject::Without(std::int64_t id) const {
    LibraryState state = state_;
    const auto isIt = [id](const auto& object) { return object->id == id; };
    std::erase_if(state.maps, isIt);
    std::erase_if(state.icons, isIt);
    return state;
}

void LibraryObject::TakeUnsaved(LibraryState state, std::shared_ptr<const Envelope> envelope,
                                const std::string& key) {
    direct_.reset();
    Replace(std::move(state));
    file_.reset();
    known_.Forget();
    scratch_.reset();
    envelope_ = std::move(envelope);
    if (envelope_->IsSealed())
        key_.Remember(key);
    else
        key_.Remember({});
    if (KeepsWork())
        keeper_.Saved({});
}

SalvageReport LibraryObject::SalvageFromFile(const std::string& file, const std::string& key) {
    SalvageReport report;
    LibraryState state;
    std::shared_ptr<const Envelope> envelope;
    operations_->Run([&](Progress& progress) {
        DamagedFile damaged(RealPath(file));
        if (!damaged.Open(key))
            return;
        envelope = damaged.GetEnvelope();
        const auto scratch = MakeScratch(files_, options_.scratchFolder, envelope);
        if (damaged.Header())
            numbers_.Raise(damaged.Header()->nextNumber); // no number of the former file is given again
        Salvage salvage(damaged, scratch, numbers_, progress);
        state = salvage.Copy();
        report = salvage.Report();
    });
    keyFitted_ = envelope != nullptr;
    if (keyFitted_)
        TakeUnsaved(std::move(state), std::move(envelope), key);
    return report;
}

LoadedWork LibraryObject::LoadUnsavedWork(const std::string& scratch, const std::string& key,
                                          const std::string& base) {
    RebuiltWork work;
    operations_->Run([&](Progress& progress) {
        progress.Expect(1);
        work = RebuildUnsavedWork(RealPath(scratch), key, base);
        progress.ThrowIfCancelled();
        progress.Add(1);
    });
    keyFitted_ = work.envelope != nullptr;
    if (!keyFitted_)
        return {};
    TakeUnsaved(std::move(work.state), std::move(work.envelope), key);
    file_ = std::move(work.file);
    numbers_.Raise(work.nextNumber);
    if (KeepsWork())
        keeper_.Saved(file_ ? file_->ReadState() : LibraryState());
    return {std::move(work.notes), std::move(work.missing)};
}

namespace {

void Describe(UnsavedWork& work, const UnsavedSummary& summary) {
    work.library = summary.library;
    work.time = summary.time;
    work.changedMaps = summary.changedMaps;
    work.removedMaps = summary.removedMaps;
    work.changedIcons = summary.changedIcons;
    work.removedIcons = summary.removedIcons;
}

UnsavedWork LookAt(const std::filesystem::path& scratch) {
    UnsavedWork work;
    work.scratch = scratch.string();
    work.isInUse = !ScratchLock(scratch).IsHeld();
    try {
        const UnsavedOverview overview = ReadUnsavedOverview(scratch);
        Describe(work, overview.summary);
        work.needsKey = overview.isSealed;
    } catch (const ComponentError& error) {
        work.problem = error.Description();
    }
    return work;
}

} // namespace

std::vector<UnsavedWork> FindUnsavedWork() {
    std::vector<UnsavedWork> found;
    for (const std::filesystem::path& scratch : FindScratches())
        found.push_back(LookAt(scratch));
    return found;
}

UnsavedWork LookAtUnsavedWork(const std::string& scratch) {
    const std::filesystem::path path = RealPath(scratch);
    RequireRegularFile(path);
    return LookAt(path);
}

void DiscardUnsavedWork(const std::string& scratch) {
    const std::filesystem::path path = RealPath(scratch);
    RequireRegularFile(path);
    std::vector<std::string> others;
    {
        const LeftScratch left(path);
        others = left.Summary().scratches;
    }
    const auto files = SystemFiles();
    for (const std::string& other : others)
        if (const std::filesystem::path companion = RealPath(other);
            companion != path && ScratchLock(companion).IsHeld())
            RemoveScratch(*files, companion);
    RemoveScratch(*files, path);
}
