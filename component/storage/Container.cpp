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

/// Where blobs of a kind stand.
struct Place {
    std::string_view table;
    std::string_view column;
    std::string_view put = "INSERT";
};

Place PlaceOf(BlobKind kind) {
    switch (kind) {
    case BlobKind::Tile:
    case BlobKind::IconPicture:
        return {"blob", "data"};
    case BlobKind::DirectoryPage:
        return {"tile_index", "data"};
    case BlobKind::MapRecord:
        return {"map", "record", "INSERT OR REPLACE"};
    case BlobKind::IconRecord:
        return {"icon", "record", "INSERT OR REPLACE"};
    case BlobKind::MetadataRecord:
        return {"metadata", "record", "INSERT OR REPLACE"};
    case BlobKind::UnsavedState:
        return {"unsaved", "data", "INSERT OR REPLACE"};
    }
    throw ComponentError(ErrorNumber::InvalidArgument, "There is no such record.");
}

std::string Text(std::initializer_list<std::string_view> parts) {
    std::string text;
    for (const std::string_view part : parts)
        text += part;
    return text;
}

std::string PutSql(BlobKind kind) {
    const Place place = PlaceOf(kind);
    return Text({place.put, " INTO ", place.table, "(id, ", place.column, ") VALUES(?1, ?2)"});
}

std::string SelectSql(BlobKind kind) {
    const Place place = PlaceOf(kind);
    return Text({"SELECT ", place.column, " FROM ", place.table, " WHERE id = ?1"});
}

std::string SelectAllSql(BlobKind kind) {
    const Place place = PlaceOf(kind);
    return Text({"SELECT id, ", place.column, " FROM ", place.table, " ORDER BY id"});
}

std::string RemoveSql(BlobKind kind) {
    return Text({"DELETE FROM ", PlaceOf(kind).table, " WHERE id = ?1"});
}

/// A statement that shows a row holds the file locked for reading; so it must not be left, not by an
/// exception.
class ResetAtEnd {
public:
    explicit ResetAtEnd(Statement& statement) : statement_(statement) {}
    ~ResetAtEnd() { statement_.Reset(); }
    ResetAtEnd(const ResetAtEnd&) = delete;
    ResetAtEnd& operator=(const ResetAtEnd&) = delete;

private:
    Statement& statement_;
};

} // namespace

Container::Table::Table(Database& database, BlobKind kind)
    : put(database, PutSql(kind).c_str()), select(database, SelectSql(kind).c_str()),
      remove(database, RemoveSql(kind).c_str()) {}

Container::Container(std::unique_ptr<Database> database, std::shared_ptr<const Envelope> envelope)
    : database_(std::move(database)), envelope_(std::move(envelope)) {
    TableOf(BlobKind::Tile);
    TableOf(BlobKind::DirectoryPage);
}

Container::Table& Container::TableOf(BlobKind kind) {
    return tables_.try_emplace(PlaceOf(kind).table, *database_, kind).first->second;
}

void Container::PutStored(BlobKind kind, std::int64_t number, ByteSpan stored) {
    {
        const std::scoped_lock lock(mutex_);
        TableOf(kind).put.Bind(1, number).Bind(2, stored).Run();
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
    const ResetAtEnd reset(select);
    if (!select.Bind(1, number).Step())
        return std::nullopt;
    const ByteSpan stored = select.Blob(0);
    return Bytes(stored.begin(), stored.end());
}

void Container::Remove(BlobKind kind, std::int64_t number) {
    const std::scoped_lock lock(mutex_);
    TableOf(kind).remove.Bind(1, number).Run();
}

void Container::ForEachStored(BlobKind kind,
                              const std::function<void(std::int64_t number, ByteSpan stored)>& see) {
    const std::scoped_lock lock(mutex_);
    Statement rows(*database_, SelectAllSql(kind).c_str());
    while (rows.Step())
        see(rows.Integer(0), rows.Blob(1));
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
