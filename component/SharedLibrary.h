#pragma once

#include "component/AtlavexLibrary.h"

#include <chrono>

/// Asked again and again while another program's lock stands in the way, with how long it has done so:
/// whether to go on waiting (else FileLocked). Perhaps on another thread than the caller's, within the call;
/// must not throw.
using WaitForOthers = std::function<bool(std::chrono::milliseconds waited)>;

/// A new, empty library for a program that takes its turn with others: it waits for their locks, where others
/// wait for a moment only. With NewTiles::LibraryFile its LoadFromFile takes the write lock before anything
/// is read and holds it until the library is saved or gone.
std::unique_ptr<AtlavexLibrary> CreateSharedLibrary(const LibraryOptions& options,
                                                    WaitForOthers waitForOthers);
