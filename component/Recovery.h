#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Unsaved work that killed programs left. A library that keeps its work (LibraryOptions::keepUnsavedWork) has
// it in its scratch, records and all. A scratch that holds unsaved work and that nobody holds locked stays
// until it is discarded here; nothing else removes it. AtlavexLibrary::LoadUnsavedWork makes a library of it
// again.

/// Unsaved work in one scratch.
struct UnsavedWork {
    std::string scratch;          ///< path
    std::string library;          ///< path of the file that it belongs to; empty: of none yet
    std::string time;             ///< of the last change, local: "2026-11-22 16:07:33"
    std::int32_t changedMaps = 0; ///< added ones too
    std::int32_t removedMaps = 0;
    std::int32_t changedIcons = 0;
    std::int32_t removedIcons = 0;
    bool needsKey = false;
    bool isInUse = false; ///< a program that is running has it: nothing is lost yet
    std::string problem;  ///< why nothing more can be said of it, in a sentence; mostly empty
};

/// All that can be found of this user's, in the cache folder, in the folders that the editor was told to use,
/// and among the system's lasting temporary files.
std::vector<UnsavedWork> FindUnsavedWork();

/// The same of one scratch. Throws FileNotFound, FileNotReadable where the path names no file.
UnsavedWork LookAtUnsavedWork(const std::string& scratch);

/// Removes a scratch with all that belongs to it, unsaved work and all. FileLocked while a program uses it;
/// InvalidArgument
/// for a file that is no scratch, FileDamaged for one that cannot be read: it stays.
void DiscardUnsavedWork(const std::string& scratch);
