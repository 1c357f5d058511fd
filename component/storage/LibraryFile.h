#pragma once

#include "component/storage/FileHeader.h"
#include "component/storage/LibraryState.h"

#include <filesystem>
#include <optional>

/// A library file that is open. Opening reads header and records and checks them against the digest tree;
/// tiles are read when they are looked at.
class LibraryFile {
public:
    /// What others' locks are waited for with, and whether the file is to be written.
    struct Access {
        LockWait wait; ///< nothing: a moment
        /// The write lock is taken before anything is read, so that what is read stays what is saved over.
        bool toWrite = false;
    };

    /// The header as it is stored, with the code over it: another state, another row.
    struct HeaderRow {
        Bytes header;
        HeaderMac mac{};
        bool operator==(const HeaderRow&) const = default;
    };

    /// Whether the file is sealed. Reads a flag only. Throws what opening throws.
    static bool IsSealed(const std::filesystem::path& file, const LockWait& wait = {});

    /// The header row of a file that need not be opened further. Throws what opening throws.
    static HeaderRow RowOf(const std::filesystem::path& file);

    /// Nothing when the key is wrong. Throws FileNotFound, FileNotReadable, NotALibrary, NewerVersion,
    /// FileDamaged, FileLocked. `shownName` is the name that error sentences give.
    static std::unique_ptr<LibraryFile> Open(const std::filesystem::path& file, const std::string& key,
                                             const std::string& shownName, const Access& access);
    static std::unique_ptr<LibraryFile> Open(const std::filesystem::path& file, const std::string& key,
                                             const std::string& shownName) {
        return Open(file, key, shownName, {});
    }
    /// With the envelope known: no key derivation.
    static std::unique_ptr<LibraryFile> Open(const std::filesystem::path& file,
                                             std::shared_ptr<const Envelope> envelope,
                                             const std::string& shownName);

    /// The write lock of a file that was opened to be written; nothing otherwise, and the second time.
    std::unique_ptr<Transaction> HandOverLock() { return std::move(lock_); }

    const std::filesystem::path& Path() const { return path_; }
    const FileHeader& Header() const { return header_; }
    const HeaderRow& Row() const { return row_; }
    const std::shared_ptr<Container>& Tiles() const { return container_; }
    Database& GetDatabase() const { return container_->GetDatabase(); }
    const RecordTable& Records() const { return records_; }

    /// The maps and icons as stored; each call gives fresh copies, the first those that were read with the
    /// header.
    LibraryState ReadState();

    /// Whether the path still names this file and its header is the one that was read or last saved.
    bool IsUnchanged() const;
    /// Throws FileChanged unless it is so. To be called while the write lock is held.
    void RequireUnchanged() const;
    /// Whether this header is the one that stands in the file now.
    bool Holds(const FileHeader& header) const;
    /// Takes over header and records that have been committed to this file.
    void Adopt(const FileHeader& header, RecordTable records);

private:
    LibraryFile(std::filesystem::path path, std::unique_ptr<Database> database,
                std::unique_ptr<Transaction> lock = {});
    static HeaderRow ReadHeaderRow(Database& database);
    static FileHeader DecodeHeader(Database& database, const HeaderRow& row);
    /// Reads header, records and state as they are at one moment. False when the header is no longer the one
    /// that the envelope was made for.
    bool Accept(std::shared_ptr<const Envelope> envelope);
    void ReadHeader();
    void ReadRecords();
    LibraryState DecodeState();
    Bytes RecordOf(const RecordKey& key);

    std::filesystem::path path_;
    std::unique_ptr<Database> opening_; ///< until the key is known to fit
    HeaderRow row_;
    FileHeader header_;
    std::shared_ptr<Container> container_;
    RecordTable records_;
    std::optional<LibraryState> read_;  ///< as it was read with the header, until it is asked for
    std::unique_ptr<Transaction> lock_; ///< ends before the database that it is on
};
