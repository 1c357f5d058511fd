#pragma once

#include "component/storage/Envelope.h"
#include "component/storage/files/Database.h"

#include <atomic>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string_view>

/// Gives the numbers under which maps, icons, directory pages and blobs are stored. No number is given
/// twice in the life of a library, so a sealed blob can be bound to its own.
class NumberSource {
public:
    explicit NumberSource(std::int64_t next = 1) : next_(next) {}
    std::int64_t Allocate() { return next_.fetch_add(1); }
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

/// A database with the tables for records, directory pages and blobs, and the envelope that they stand in
/// there. A scratch has no tables for records. May be used by several threads at once.
class Container {
public:
    Container(std::unique_ptr<Database> database, std::shared_ptr<const Envelope> envelope);

    Database& GetDatabase() { return *database_; }
    const Envelope& GetEnvelope() const { return *envelope_; }
    std::shared_ptr<const Envelope> SharedEnvelope() const { return envelope_; }

    /// A record takes the place of the former one; a number is never given to two blobs or pages.
    void PutStored(BlobKind kind, std::int64_t number, ByteSpan stored);
    /// Nothing when there is no such row.
    std::optional<Bytes> GetStored(BlobKind kind, std::int64_t number);
    void Remove(BlobKind kind, std::int64_t number);
    /// Shows all rows that stand in one table with this kind, in the order of their numbers. What is called
    /// must not use the container.
    void ForEachStored(BlobKind kind, const std::function<void(std::int64_t number, ByteSpan stored)>& see);
    /// Gives back to the disk what was removed from a scratch, as far as that is possible within half a
    /// second; in a library's file the space stays for what is saved next.
    void GiveBackSpace() noexcept;

    /// Closes the blob and stores it; gives its length as stored and its digest.
    ClosedBlob Put(BlobKind kind, std::int64_t number, ByteSpan plain);
    /// False when there is no such row or it is not the blob of this digest.
    bool Get(BlobKind kind, std::int64_t number, const Digest& digest, Bytes& plain);

private:
    /// The statements on one table. Those on records are made when they are first needed.
    struct Table {
        Table(Database& database, BlobKind kind);
        Statement put;
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
    std::map<std::string_view, Table> tables_;
};
