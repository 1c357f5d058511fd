#include "component/storage/UnsavedRecords.h"

#include "component/storage/Schema.h"
#include "component/storage/Scratch.h"

#include <algorithm>
#include <ctime>
#include <utility>

namespace {

constexpr std::uint8_t SummaryVersion = 1;
constexpr std::uint8_t StateVersion = 1;
constexpr std::int64_t SummaryRow = 1;
constexpr std::int64_t StateRow = 2;

std::string LocalTime() {
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    localtime_r(&now, &parts);
    std::array<char, 32> text{};
    return {text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &parts)};
}

void WriteKey(ByteWriter& writer, const RecordKey& key) {
    writer.Integer(static_cast<std::uint8_t>(key.first));
    writer.Integer(key.second);
}

RecordKey ReadKey(ByteReader& reader) {
    const auto kind = static_cast<BlobKind>(reader.Integer<std::uint8_t>());
    ByteReader::Require(kind == BlobKind::MapRecord || kind == BlobKind::IconRecord ||
                            kind == BlobKind::MetadataRecord,
                        "a record is of an unknown kind");
    const auto number = reader.Integer<std::int64_t>();
    ByteReader::Require(number >= 1, "a record has no number");
    return {kind, number};
}

std::uint32_t ReadCount(ByteReader& reader) {
    const auto count = reader.Integer<std::uint32_t>();
    ByteReader::Require(count <= reader.Left(), "it breaks off");
    return count;
}

/// A map's record as it is compared: how it is looked at is no work.
Bytes ComparedRecord(const MapState& map) {
    MapRecord record = map.record;
    record.zoom = 1;
    return record.Encode();
}

/// Calls `see` with the key of every record of the state and a function that gives its bytes, as stored or as
/// compared.
template <typename See>
void ForEachRecord(const LibraryState& state, bool compared, const See& see) {
    for (const auto& map : state.maps) {
        see(RecordKey{BlobKind::MapRecord, map->id},
            [&] { return compared ? ComparedRecord(*map) : map->record.Encode(); });
        see(RecordKey{BlobKind::MetadataRecord, map->id}, [&] { return EncodeMetadata(map->metadata); });
    }
    for (const auto& icon : state.icons) {
        see(RecordKey{BlobKind::IconRecord, icon->id}, [&] { return icon->record.Encode(); });
        see(RecordKey{BlobKind::MetadataRecord, icon->id}, [&] { return EncodeMetadata(icon->metadata); });
    }
}

std::map<RecordKey, Digest> DigestsOf(const LibraryState& state) {
    std::map<RecordKey, Digest> digests;
    ForEachRecord(state, true,
                  [&](const RecordKey& key, const auto& bytes) { digests[key] = PlainDigest(bytes()); });
    return digests;
}

UnsavedState StateOf(const LibraryState& state, const std::vector<RecordKey>& removed,
                     const RecordTable& kept, std::int64_t nextNumber) {
    UnsavedState unsaved;
    unsaved.nextNumber = nextNumber;
    for (const auto& map : state.maps)
        unsaved.objects.push_back({{BlobKind::MapRecord, map->id}, map->Name()});
    for (const auto& icon : state.icons)
        unsaved.objects.push_back({{BlobKind::IconRecord, icon->id}, icon->Name()});
    unsaved.removed = removed;
    for (const auto& [key, digests] : kept)
        unsaved.records[key] = digests.stored;
    return unsaved;
}

void PutBase(Database& database, const LibraryFile::HeaderRow& row) {
    Statement(database, "INSERT OR REPLACE INTO library(id, header, mac) VALUES(1, ?1, ?2)")
        .Bind(1, row.header)
        .Bind(2, row.mac)
        .Run();
}

void PutSummary(Database& database, const UnsavedSummary& summary) {
    const Bytes bytes = summary.Encode();
    Statement(database, "INSERT OR REPLACE INTO unsaved(id, data) VALUES(?1, ?2)")
        .Bind(1, SummaryRow)
        .Bind(2, bytes)
        .Run();
}

UnsavedSummary SummaryIn(Database& database) {
    CheckKeptScratchSchema(database);
    Statement row(database, "SELECT data FROM unsaved WHERE id = ?1");
    if (!row.Bind(1, SummaryRow).Step())
        database.Damaged("it holds no unsaved work");
    return ReadingFrom(database, [&] { return UnsavedSummary::Decode(row.Blob(0)); });
}

LibraryFile::HeaderRow BaseIn(Database& database) {
    Statement select(database, "SELECT header, mac FROM library WHERE id = 1");
    LibraryFile::HeaderRow row;
    if (!select.Step() || select.Blob(0).size() != FileHeader::EncodedSize ||
        select.Blob(1).size() != row.mac.size())
        database.Damaged("it does not say which library it belongs to");
    row.header.assign(select.Blob(0).begin(), select.Blob(0).end());
    std::ranges::copy(select.Blob(1), row.mac.begin());
    return row;
}

FileHeader HeaderOf(const Database& database, const LibraryFile::HeaderRow& row) {
    return ReadingFrom(database, [&] { return FileHeader::Decode(row.header); });
}

} // namespace

Bytes UnsavedSummary::Encode() const {
    ByteWriter writer;
    writer.Integer(SummaryVersion);
    writer.Text(library);
    writer.Text(time);
    writer.Raw(session);
    writer.Integer(revision);
    writer.Integer(static_cast<std::uint32_t>(scratches.size()));
    for (const std::string& scratch : scratches)
        writer.Text(scratch);
    for (const std::int32_t count : {changedMaps, removedMaps, changedIcons, removedIcons})
        writer.Integer(count);
    writer.Raw(state);
    return writer.Written();
}

UnsavedSummary UnsavedSummary::Decode(ByteSpan bytes) {
    ByteReader reader(bytes);
    ByteReader::Require(reader.Integer<std::uint8_t>() == SummaryVersion,
                        "its unsaved work is of a newer version");
    UnsavedSummary summary;
    summary.library = reader.Text();
    summary.time = reader.Text();
    summary.session = reader.Array<16>();
    summary.revision = reader.Integer<std::int64_t>();
    for (std::uint32_t left = ReadCount(reader); left > 0; --left)
        summary.scratches.push_back(reader.Text());
    for (std::int32_t* count :
         {&summary.changedMaps, &summary.removedMaps, &summary.changedIcons, &summary.removedIcons})
        *count = reader.Integer<std::int32_t>();
    summary.state = reader.Array<16>();
    reader.End();
    return summary;
}

Bytes UnsavedState::Encode() const {
    ByteWriter writer;
    writer.Integer(StateVersion);
    writer.Integer(nextNumber);
    writer.Integer(static_cast<std::uint32_t>(objects.size()));
    for (const Object& object : objects) {
        WriteKey(writer, object.key);
        writer.Text(object.name);
    }
    writer.Integer(static_cast<std::uint32_t>(removed.size()));
    for (const RecordKey& key : removed)
        WriteKey(writer, key);
    writer.Integer(static_cast<std::uint32_t>(records.size()));
    for (const auto& [key, digest] : records) {
        WriteKey(writer, key);
        writer.Raw(digest);
    }
    return writer.Written();
}

UnsavedState UnsavedState::Decode(ByteSpan bytes) {
    ByteReader reader(bytes);
    ByteReader::Require(reader.Integer<std::uint8_t>() == StateVersion,
                        "its unsaved work is of a newer version");
    UnsavedState state;
    state.nextNumber = reader.Integer<std::int64_t>();
    ByteReader::Require(state.nextNumber >= 1 && state.nextNumber <= FileHeader::LargestCount,
                        "its next number is impossible");
    for (std::uint32_t left = ReadCount(reader); left > 0; --left) {
        const RecordKey key = ReadKey(reader);
        state.objects.push_back({key, reader.Text()});
    }
    for (std::uint32_t left = ReadCount(reader); left > 0; --left)
        state.removed.push_back(ReadKey(reader));
    for (std::uint32_t left = ReadCount(reader); left > 0; --left) {
        const RecordKey key = ReadKey(reader);
        state.records[key] = reader.Array<16>();
    }
    reader.End();
    return state;
}

UnsavedKeeper::UnsavedKeeper() {
    FillRandom(session_);
}

void UnsavedKeeper::Saved(const LibraryState& state) {
    saved_ = DigestsOf(state);
    scratches_.clear();
    holds_ = false;
}

UnsavedKeeper::Changes UnsavedKeeper::ChangesOf(const LibraryState& state) const {
    const std::map<RecordKey, Digest> now = DigestsOf(state);
    Changes changes;
    for (const auto& [key, digest] : now)
        if (const auto former = saved_.find(key); former == saved_.end() || former->second != digest)
            changes.changed.insert(key);
    for (const auto& [key, digest] : saved_)
        if (key.first != BlobKind::MetadataRecord && !now.contains(key))
            changes.removed.push_back(key);
    return changes;
}

bool UnsavedKeeper::IsUnsaved(const LibraryState& state) const {
    const Changes changes = ChangesOf(state);
    return !changes.changed.empty() || !changes.removed.empty();
}

void UnsavedKeeper::Use(const std::shared_ptr<Container>& scratch) {
    const bool isKnown = std::ranges::any_of(
        scratches_, [&](const Scratch& known) { return known.container.lock() == scratch; });
    if (!isKnown)
        scratches_.push_back({scratch, {}});
}

UnsavedSummary UnsavedKeeper::SummaryOf(const Changes& changes, const Base& base) const {
    UnsavedSummary summary;
    summary.library = base.path;
    summary.time = LocalTime();
    summary.session = session_;
    summary.revision = revision_;
    for (const Scratch& scratch : scratches_)
        if (const auto container = scratch.container.lock())
            summary.scratches.push_back(container->GetDatabase().ShownName());
    std::set<std::int64_t> icons, objects;
    for (const auto& [kind, number] : changes.changed) {
        objects.insert(number);
        if (kind == BlobKind::IconRecord)
            icons.insert(number);
    }
    for (const std::int64_t number : objects)
        if (icons.contains(number) || saved_.contains({BlobKind::IconRecord, number}))
            ++summary.changedIcons;
        else
            ++summary.changedMaps;
    for (const auto& [kind, number] : changes.removed)
        ++(kind == BlobKind::MapRecord ? summary.removedMaps : summary.removedIcons);
    return summary;
}

void UnsavedKeeper::PutRecords(Container& container, RecordTable& kept, const LibraryState& state,
                               const Changes& changes) {
    ForEachRecord(state, false, [&](const RecordKey& key, const auto& bytes) {
        if (!changes.changed.contains(key))
            return;
        const Bytes plain = bytes();
        const Digest digest = PlainDigest(plain);
        if (const auto former = kept.find(key); former != kept.end() && former->second.plain == digest)
            return;
        kept[key] = {container.Put(key.first, key.second, plain).digest, digest};
    });
    std::erase_if(kept, [&](const auto& record) {
        const bool isGone = !changes.changed.contains(record.first);
        if (isGone)
            container.Remove(record.first.first, record.first.second);
        return isGone;
    });
}

void UnsavedKeeper::Forget() {
    for (Scratch& scratch : scratches_)
        if (const auto container = scratch.container.lock())
            MarkUnsavedWork(container->GetDatabase(), false);
    holds_ = false;
}

void UnsavedKeeper::Keep(const LibraryState& state, const Base& base, std::int64_t nextNumber) {
    const Changes changes = ChangesOf(state);
    if (changes.changed.empty() && changes.removed.empty()) {
        Forget();
        return;
    }
    std::erase_if(scratches_, [](const Scratch& scratch) { return scratch.container.expired(); });
    ++revision_;
    UnsavedSummary summary = SummaryOf(changes, base);
    for (Scratch& scratch : scratches_) {
        const auto container = scratch.container.lock();
        if (!container)
            continue;
        RecordTable kept = scratch.kept;
        Savepoint savepoint(container->GetDatabase());
        PutRecords(*container, kept, state, changes);
        const Bytes whole = StateOf(state, changes.removed, kept, nextNumber).Encode();
        summary.state = container->Put(BlobKind::UnsavedState, StateRow, whole).digest;
        PutBase(container->GetDatabase(), base.row);
        PutSummary(container->GetDatabase(), summary);
        MarkUnsavedWork(container->GetDatabase(), true);
        savepoint.Keep();
        scratch.kept = std::move(kept);
    }
    holds_ = true;
}

/// The lock outlives the connection: the other way round, somebody else could take the file in between.
class LeftScratch::Held {
public:
    explicit Held(const std::filesystem::path& path) : lock_(path) {
        RequireKeptScratch(path);
        if (!lock_.IsHeld())
            throw ComponentError(ErrorNumber::FileLocked,
                                 "The unsaved work in '" + path.string() +
                                     "' is in use by another program, or is not there.");
        database_ = std::make_unique<Database>(path, Database::Mode::KeptScratch, path.string());
    }
    Database& GetDatabase() { return *database_; }
    void Open(std::shared_ptr<const Envelope> envelope) {
        container_ = std::make_unique<Container>(std::move(database_), std::move(envelope));
    }
    Container* Tiles() { return container_.get(); }

private:
    ScratchLock lock_;
    std::unique_ptr<Database> database_;
    std::unique_ptr<Container> container_;
};

LeftScratch::LeftScratch(const std::filesystem::path& path)
    : held_(std::make_shared<Held>(path)), summary_(SummaryIn(held_->GetDatabase())),
      base_(BaseIn(held_->GetDatabase())), header_(HeaderOf(held_->GetDatabase(), base_)) {}

std::shared_ptr<Container> LeftScratch::Open(std::shared_ptr<const Envelope> envelope) {
    held_->Open(std::move(envelope));
    return {held_, held_->Tiles()};
}

UnsavedOverview ReadUnsavedOverview(const std::filesystem::path& scratch) {
    RequireKeptScratch(scratch);
    Database database(scratch, Database::Mode::KeptScratch, scratch.string());
    UnsavedOverview overview;
    overview.summary = SummaryIn(database);
    overview.isSealed = HeaderOf(database, BaseIn(database)).sealed;
    return overview;
}

UnsavedState ReadUnsavedState(Container& scratch, const UnsavedSummary& summary) {
    Bytes plain;
    if (!scratch.Get(BlobKind::UnsavedState, StateRow, summary.state, plain))
        scratch.GetDatabase().Damaged("its unsaved state does not match its digest");
    return ReadingFrom(scratch.GetDatabase(), [&] { return UnsavedState::Decode(plain); });
}

Bytes ReadUnsavedRecord(Container& scratch, const UnsavedState& state, const RecordKey& key) {
    const auto record = state.records.find(key);
    Bytes plain;
    if (record == state.records.end() || !scratch.Get(key.first, key.second, record->second, plain))
        scratch.GetDatabase().Damaged("an unsaved record is missing or does not match its digest");
    return plain;
}
