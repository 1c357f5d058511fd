#pragma once

#include <string>

/// Another process that holds the write lock of a library file, as a program that is saving does.
class LockingProgram {
public:
    /// "IMMEDIATE": others may read meanwhile; "EXCLUSIVE": they may not, as when the file itself is written.
    explicit LockingProgram(const std::string& file, const std::string& kind = "IMMEDIATE");
    /// Lets go and waits for the process's end.
    ~LockingProgram();
    LockingProgram(const LockingProgram&) = delete;
    LockingProgram& operator=(const LockingProgram&) = delete;

private:
    int child_ = -1;
    int input_ = -1;  ///< closing it ends the process
    int output_ = -1; ///< open as long as the process may write
};

/// Another process opens the library by the engine, sets the metadata "by" of its first map and saves it.
void SaveByAnotherProgram(const std::string& file, const std::string& key, const std::string& value);
