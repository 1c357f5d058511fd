#pragma once

#include "base/FileDescriptor.h"

#include <cstdio>
#include <memory>

struct CloseFileStream {
    void operator()(std::FILE* stream) const noexcept;
};

/// Owns a C stream. Closing it with its owner says nothing of what was lost: flush and sync before, where
/// that counts.
using FileStream = std::unique_ptr<std::FILE, CloseFileStream>;

/// A stream over an open descriptor, which it then owns; `mode` as for fopen. None, with errno, on failure.
FileStream OpenFileStream(FileDescriptor descriptor, const char* mode);
