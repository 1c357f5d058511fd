#pragma once

#include "component/storage/Envelope.h"
#include "component/storage/files/Database.h"

#include <atomic>
#include <mutex>
#include <optional>

/// Gives the numbers under which maps, icons, directory pages and blobs are stored. No number is given
/// twice in the life of a library, so a sealed blob can be bound to its own.
class NumberSource {
public:
    explicit NumberSource(std::int64_t next = 1) : next_(next) {}
    std::int64_t Take() { return next_.fetch_add(1); }
    std::int64_t Next() const { return next_.load(); }
    /// Never goes back.
    void Raise(std::int64_t next) {
        std::int64_t now = next_.load();
        while (now < next && !next_.compare_exchange_weak(now, next)) {
        }
    }

private:
    std::atomic<std::int64_t> next_;
};

/// A database with the tables for blobs and directory pages, and the envelope that they stand in there. May
/// be used by several threads at once.
class Container {
public:
    Container(std::unique_ptr<Database> database, std::shared_ptr<const Envelope> envelope);

    Database& GetDatabase() { return *database_; }
    const Envelope& GetEnvelope() const { return *envelope_; }
    std::shared_ptr<const Envelope> SharedEnvelope() const { return envelope_; }

    /// Kinds: Tile, IconPicture and DirectoryPage.
    void PutStored(BlobKind kind, std::int64_t number, ByteSpan stored);
    /// Nothing when there is no such row.
    std::optional<Bytes> GetStored(BlobKind kind, std::int64_t number);
    void Remove(BlobKind kind, std::int64_t number);
    /// Gives back to the disk what was removed from a scratch, as far as that is possible within half a
    /// second; in a library's file the space stays for what is saved next.
    void GiveBackSpace() noexcept;

    /// Closes the blob and stores it; gives its length as stored and its digest.
    ClosedBlob Put(BlobKind kind, std::int64_t number, ByteSpan plain);
    /// False when there is no such row or it is not the blob of this digest.
    bool Get(BlobKind kind, std::int64_t number, const Digest& digest, Bytes& plain);

private:
    struct Table {
        Table(Database& database, const char* insertSql, const char* selectSql, const char* removeSql)
            : insert(database, insertSql), select(database, selectSql), remove(database, removeSql) {}
        Statement insert;
        Statement select;
        Statement remove;
    };
    Table& TableOf(BlobKind kind);
    void GiveBackSome();
    std::int64_t FreePages();

    std::unique_ptr<Database> database_;
    std::shared_ptr<const Envelope> envelope_;
    std::mutex mutex_;
    std::size_t unwritten_ = 0; ///< bytes since the last request to get them to the disk
    Table blobs_;
    Table pages_;
};
