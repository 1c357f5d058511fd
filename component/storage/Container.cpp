#include "component/storage/Container.h"

#include <chrono>
#include <exception>
#include <utility>

namespace {

/// So much is written between two requests to get it to the disk.
constexpr std::size_t WriteBackStep = std::size_t{32} << 20;

/// At a time.
constexpr int PagesGivenBack = 1000;

/// It takes longer by the square of what is given back, and somebody waits for it: after this time the rest
/// is left to the next removal, and is used again until then.
constexpr std::chrono::milliseconds LongestGivingBack(500);

} // namespace

Container::Container(std::unique_ptr<Database> database, std::shared_ptr<const Envelope> envelope)
    : database_(std::move(database)), envelope_(std::move(envelope)),
      blobs_(*database_, "INSERT INTO blob(id, data) VALUES(?1, ?2)", "SELECT data FROM blob WHERE id = ?1",
             "DELETE FROM blob WHERE id = ?1"),
      pages_(*database_, "INSERT INTO tile_index(id, data) VALUES(?1, ?2)",
             "SELECT data FROM tile_index WHERE id = ?1", "DELETE FROM tile_index WHERE id = ?1") {}

Container::Table& Container::TableOf(BlobKind kind) {
    return kind == BlobKind::DirectoryPage ? pages_ : blobs_;
}

void Container::PutStored(BlobKind kind, std::int64_t number, ByteSpan stored) {
    {
        const std::scoped_lock lock(mutex_);
        TableOf(kind).insert.Bind(1, number).Bind(2, stored).Run();
        unwritten_ += stored.size();
        if (unwritten_ < WriteBackStep)
            return;
        unwritten_ = 0;
    }
    database_->StartWriteBack();
}

std::optional<Bytes> Container::GetStored(BlobKind kind, std::int64_t number) {
    const std::scoped_lock lock(mutex_);
    Statement& select = TableOf(kind).select;
    select.Reset(); // an earlier look may have ended in an exception
    std::optional<Bytes> stored;
    if (select.Bind(1, number).Step()) {
        const ByteSpan blob = select.Blob(0);
        stored.emplace(blob.begin(), blob.end());
    }
    select.Reset();
    return stored;
}

void Container::Remove(BlobKind kind, std::int64_t number) {
    const std::scoped_lock lock(mutex_);
    TableOf(kind).remove.Bind(1, number).Run();
}

void Container::GiveBackSpace() noexcept {
    try {
        const auto end = std::chrono::steady_clock::now() + LongestGivingBack;
        std::int64_t before = 0;
        std::int64_t left = FreePages();
        do {
            GiveBackSome();
            before = std::exchange(left, FreePages());
        } while (left < before && std::chrono::steady_clock::now() < end);
    } catch (const std::exception&) {
        return; // what was not given back is used again
    }
}

void Container::GiveBackSome() {
    // Pages that are moved are kept in memory until the statement ends.
    const std::string some = "PRAGMA incremental_vacuum(" + std::to_string(PagesGivenBack) + ")";
    const std::scoped_lock lock(mutex_);
    database_->Execute(some.c_str());
}

std::int64_t Container::FreePages() {
    const std::scoped_lock lock(mutex_);
    return database_->Number("PRAGMA freelist_count");
}

ClosedBlob Container::Put(BlobKind kind, std::int64_t number, ByteSpan plain) {
    ClosedBlob closed = envelope_->Close(kind, number, plain);
    PutStored(kind, number, closed.bytes);
    return closed;
}

bool Container::Get(BlobKind kind, std::int64_t number, const Digest& digest, Bytes& plain) {
    const std::optional<Bytes> stored = GetStored(kind, number);
    return stored && envelope_->Open(kind, number, *stored, digest, plain);
}
