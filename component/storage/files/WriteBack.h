#pragma once

#include <filesystem>
#include <mutex>

/// Gets a large file to the disk while it is still being written, so that the sync at the end of its
/// transaction finds little left to do. It promises nothing: only that sync does. Where the system has no
/// such call, it does nothing.
class WriteBack {
public:
    explicit WriteBack(std::filesystem::path file) : file_(std::move(file)) {}
    /// Closes a descriptor of the file, which drops every lock that this process holds on it: the object must
    /// outlive the database connection to that file.
    ~WriteBack();
    WriteBack(const WriteBack&) = delete;
    WriteBack& operator=(const WriteBack&) = delete;

    /// Starts writing what has been changed so far and does not wait for it. By any thread.
    void Start();

private:
    std::mutex mutex_;
    std::filesystem::path file_;
    int descriptor_ = -1;
};
