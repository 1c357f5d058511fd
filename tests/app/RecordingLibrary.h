#pragma once

#include "component/AtlavexLibrary.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

/// What a test does when the window has answered an event of a library.
struct ProgressProbe {
    std::function<void(float total)> begun;
    std::function<void(float done)> progressed;
    std::function<void()> ended;
};

/// A real library that writes down which of its operations were called, in order, with their arguments.
class RecordingLibrary : public AtlavexLibrary {
public:
    using Log = std::vector<std::string>;

    RecordingLibrary(std::unique_ptr<AtlavexLibrary> real, Log& log, const ProgressProbe& probe)
        : real_(std::move(real)), log_(log), probe_(probe) {
        real_->OnProgressBegin = [this](float total, AtlavexLibrary&) {
            Raise(OnProgressBegin, total, *this);
            Raise(probe_.begun, total);
        };
        real_->OnProgress = [this](float done) {
            Raise(OnProgress, done);
            Raise(probe_.progressed, done);
        };
        real_->OnProgressEnd = [this] {
            Raise(OnProgressEnd);
            Raise(probe_.ended);
        };
    }

    std::int32_t MapCount() const override { return log_.emplace_back("MapCount"), real_->MapCount(); }
    std::int32_t IconCount() const override { return log_.emplace_back("IconCount"), real_->IconCount(); }
    std::string MapIdAt(std::int32_t position) const override {
        log_.emplace_back("MapIdAt " + std::to_string(position));
        return real_->MapIdAt(position);
    }
    std::string IconIdAt(std::int32_t position) const override {
        log_.emplace_back("IconIdAt " + std::to_string(position));
        return real_->IconIdAt(position);
    }
    std::shared_ptr<AtlavexMap> GetMap(const std::string& reference) override {
        return log_.emplace_back("GetMap"), real_->GetMap(reference);
    }
    std::shared_ptr<AtlavexIcon> GetIcon(const std::string& reference) override {
        return log_.emplace_back("GetIcon"), real_->GetIcon(reference);
    }
    std::shared_ptr<AtlavexMap> AddMapFromImageFile(const std::string& file, const std::string& name,
                                                    std::int32_t tileWidth,
                                                    std::int32_t tileHeight) override {
        log_.emplace_back("AddMapFromImageFile " + name + " " + std::to_string(tileWidth) + "x" +
                          std::to_string(tileHeight));
        return real_->AddMapFromImageFile(file, name, tileWidth, tileHeight);
    }
    std::shared_ptr<AtlavexIcon> AddIconFromImageFile(const std::string& file,
                                                      const std::string& name) override {
        log_.emplace_back("AddIconFromImageFile " + name);
        return real_->AddIconFromImageFile(file, name);
    }
    void SetScratchFolder(const std::string& folder) override {
        real_->SetScratchFolder(folder.empty() ? usualScratchFolder : folder);
    }
    void RemoveMap(const std::string& reference) override {
        log_.emplace_back("RemoveMap");
        real_->RemoveMap(reference);
    }
    void RemoveIcon(const std::string& reference) override {
        log_.emplace_back("RemoveIcon");
        real_->RemoveIcon(reference);
    }
    bool IsEncrypted(const std::string& file) override {
        return log_.emplace_back("IsEncrypted"), real_->IsEncrypted(file);
    }
    void LoadFromFile(const std::string& file, const std::string& key) override {
        log_.emplace_back("LoadFromFile key '" + key + "'");
        real_->LoadFromFile(file, key);
    }
    void SaveToFile(const std::string& file, const std::string& key) override {
        log_.emplace_back("SaveToFile key '" + key + "'");
        real_->SaveToFile(file, key);
    }
    void MergeFromFile(const std::string& file, const std::string& key) override {
        log_.emplace_back("MergeFromFile key '" + key + "'");
        real_->MergeFromFile(file, key);
    }
    std::vector<std::string> NotesOfLastSave() const override { return real_->NotesOfLastSave(); }
    bool KeyFitted() const override { return real_->KeyFitted(); }
    void KeepUnsavedWork() override { real_->KeepUnsavedWork(); }
    LoadedWork LoadUnsavedWork(const std::string& scratch, const std::string& key,
                               const std::string& base) override {
        return real_->LoadUnsavedWork(scratch, key, base);
    }
    SalvageReport SalvageFromFile(const std::string& file, const std::string& key) override {
        return real_->SalvageFromFile(file, key);
    }
    void CancelOperation() override {
        log_.emplace_back("CancelOperation");
        real_->CancelOperation();
    }
    std::vector<Damage> Verify() override { return real_->Verify(); }
    void Compact() override { real_->Compact(); }
    std::string FileName() const override { return real_->FileName(); }
    bool IsSealed() const override { return real_->IsSealed(); }

    /// Takes the place of the user's cache folder.
    std::string usualScratchFolder;

private:
    template <typename Handler, typename... Arguments>
    static void Raise(const Handler& handler, Arguments&&... arguments) {
        if (handler)
            handler(std::forward<Arguments>(arguments)...);
    }

    std::unique_ptr<AtlavexLibrary> real_;
    Log& log_;
    const ProgressProbe& probe_;
};
