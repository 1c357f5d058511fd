#pragma once

#include "component/storage/files/FileSystem.h"

#include <functional>
#include <string>
#include <vector>

/// The operating system's files with a record of every step, any one of which can be made to fail.
class RecordingFiles final : public FileSystem {
public:
    /// Steps as they were taken: "create", "sync", "rights", "name NAME", "replace NAME", "sync folder",
    /// "remove". A step that failed is recorded too.
    std::vector<std::string> steps;
    /// Which step fails, counted from 0 over those that can fail (removing cannot); none when negative.
    int failing = -1;
    /// Called with each step before it is taken.
    std::function<void(const std::string&)> watch = [](const std::string&) {};
    /// Called when a file has been put in its place.
    std::function<void()> placed = [] {};

    std::unique_ptr<LockedFile> CreateLocked(const std::filesystem::path& file) override;
    void Replace(const std::filesystem::path& from, const std::filesystem::path& to) override;
    bool AddName(const std::filesystem::path& file, const std::filesystem::path& name) override;
    void SyncFolder(const std::filesystem::path& folder) override;
    void Remove(const std::filesystem::path& file) noexcept override;
    void RemoveIfAbandoned(const std::filesystem::path& file) noexcept override;

    /// Notes a step; throws when it is the one that is to fail.
    void Step(const std::string& name);

private:
    std::shared_ptr<FileSystem> real_ = SystemFiles();
    int taken_ = 0;
};
