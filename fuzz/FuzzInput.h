#pragma once

#include "base/Bytes.h"

#include <filesystem>

/// A file in memory that holds the fuzzer's bytes under one path, written anew for each run.
class FuzzFile {
public:
    FuzzFile();
    ~FuzzFile();
    FuzzFile(const FuzzFile&) = delete;
    FuzzFile& operator=(const FuzzFile&) = delete;

    const std::filesystem::path& Write(ByteSpan bytes);

private:
    std::filesystem::path folder_;
    std::filesystem::path path_;
};
