#pragma once

#include "base/FileStream.h"

#include <cstdio>
#include <filesystem>
#include <string>

/// A file that appears under its name only when it is complete: until Commit it is built beside it under a
/// temporary name, for its owner alone, and goes away when it is given up. What killed commands left beside
/// it is swept.
class NewFile {
public:
    /// Throws ComponentError (FileNotWritable, DiskFull).
    explicit NewFile(std::filesystem::path target);
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    std::FILE* Stream() const { return stream_.get(); }
    const std::filesystem::path& Target() const { return target_; }

    /// Closes the file and gives it its name; a file of that name is replaced. Throws as the constructor.
    void Commit();

    /// The failure of the system call that just failed, as the reader of the message knows the file.
    [[noreturn]] void Fail(int systemError) const;

private:
    std::filesystem::path target_;
    std::filesystem::path temporary_;
    FileStream stream_;
};
