#pragma once

#include "cli/input/KeySource.h"
#include "cli/input/Turn.h"
#include "cli/output/ProgressBar.h"
#include "component/AtlavexLibrary.h"

#include <memory>
#include <string>

/// The library file of a command and where its key comes from, as the command line says.
struct LibraryChoice {
    std::string file;
    KeyOptions key;
    std::string wait; ///< longest wait for other programs, in seconds; empty: as long as it takes
};

/// What a command will do with the library; decides where new tiles go. A command that writes waits until no
/// other program does, and keeps others from writing until it is done.
enum class Access { Read, Write };

/// A library for the length of one command: opened with its key, its long work shown on the terminal and
/// ended by a signal.
class OpenedLibrary {
public:
    /// Loads the file. Throws ComponentError, or CommandFailure (ExitStatus::WrongKey), also when a key is
    /// named for a file that is not sealed.
    OpenedLibrary(const LibraryChoice& choice, Access access);
    /// Loads the file anew, with the key that it was opened with: the next step of a command of several, each
    /// saved by itself. What was not saved is dropped. Throws as the constructor does.
    void LoadAgain();
    /// A new, empty library without a file.
    static OpenedLibrary MakeNew();

    AtlavexLibrary* operator->() const { return library_.get(); }
    AtlavexLibrary& operator*() const { return *library_; }

    const std::string& File() const { return file_; }
    /// Empty for a plain file.
    const SecretText& Key() const { return key_; }

    /// Saves in place, under the key with which the file was opened.
    void Save();
    /// Saves under another name or key; an empty key makes a plain file.
    void SaveAs(const std::string& file, const SecretText& key);

private:
    explicit OpenedLibrary(Access access, std::string file = {}, const std::string& wait = {});
    void Load(const KeyOptions& key);
    void LoadUnder(const SecretText& key);
    void WatchWork();

    Access access_;
    // On the heap, because the library's events point at it.
    std::unique_ptr<ProgressBar> progress_ = std::make_unique<ProgressBar>();
    std::unique_ptr<Turn> turn_;
    std::unique_ptr<AtlavexLibrary> library_;
    std::string file_;
    SecretText key_;
};

/// The failure that a key did not open the file.
[[noreturn]] void ThrowWrongKey(const std::string& file);
