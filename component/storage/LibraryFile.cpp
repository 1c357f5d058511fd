#include "component/storage/LibraryFile.h"

#include "base/Paths.h"
#include "component/storage/ByteCodec.h"
#include "component/storage/Schema.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

std::string NameOf(const RecordKey& key) {
    const std::string number = std::to_string(key.second);
    switch (key.first) {
    case BlobKind::MapRecord:
        return "the record of map " + number;
    case BlobKind::IconRecord:
        return "the record of icon " + number;
    default:
        return "the metadata of number " + number;
    }
}

/// All or nothing is read from one state of the file, whatever another program does meanwhile.
class ReadTransaction {
public:
    explicit ReadTransaction(Database& database) : database_(database), own_(!database.InTransaction()) {
        if (own_)
            database_.Execute("BEGIN");
    }
    ~ReadTransaction() {
        try {
            if (own_ && database_.InTransaction())
                database_.Execute("COMMIT");
        } catch (const ComponentError&) {
            // Nothing was written; the lock goes with the connection at the latest.
        }
    }
    ReadTransaction(const ReadTransaction&) = delete;
    ReadTransaction& operator=(const ReadTransaction&) = delete;

private:
    Database& database_;
    bool own_;
};

/// The largest number under which a state says that something is stored.
std::int64_t LargestNumberIn(const LibraryState& state) {
    std::int64_t largest = 0;
    for (const auto& map : state.maps)
        for (const PageRef& page : map->record.pages)
            largest = std::max(largest, page.number);
    for (const auto& icon : state.icons)
        largest = std::max(largest, icon->record.picture.number);
    return largest;
}

/// More often than any program saves while one key is derived.
constexpr int MostAttempts = 20;

std::unique_ptr<Database> OpenChecked(const std::filesystem::path& file, const std::string& shownName,
                                      const LockWait& wait = {}) {
    RequireRegularFile(file);
    auto database = std::make_unique<Database>(file, Database::Mode::Existing, shownName, wait);
    {
        const ReadTransaction reading(*database);
        CheckLibraryFile(*database);
    }
    // Only now: these read the schema.
    database->Execute("PRAGMA synchronous=EXTRA; PRAGMA cache_size=-8000");
    return database;
}

/// Once the lock is there, the name may belong to another file: others replace it while they hold the lock.
std::unique_ptr<Database> OpenLocked(const std::filesystem::path& file, const std::string& shownName,
                                     const LockWait& wait, std::unique_ptr<Transaction>& lock) {
    for (;;) {
        auto database = OpenChecked(file, shownName, wait);
        auto taken = std::make_unique<Transaction>(*database);
        if (!database->HasMoved()) {
            lock = std::move(taken);
            return database;
        }
    }
}

} // namespace

LibraryFile::LibraryFile(std::filesystem::path path, std::unique_ptr<Database> database,
                         std::unique_ptr<Transaction> lock)
    : path_(std::move(path)), opening_(std::move(database)), lock_(std::move(lock)) {
    ReadHeader();
}

void LibraryFile::ReadHeader() {
    // The first page and the header are of one moment: a save may change the version of both.
    const ReadTransaction reading(*opening_);
    row_ = ReadHeaderRow(*opening_);
    header_ = DecodeHeader(*opening_, row_);
}

bool LibraryFile::IsSealed(const std::filesystem::path& file, const LockWait& wait) {
    const LibraryFile opened(file, OpenChecked(file, file.string(), wait));
    return opened.header_.sealed;
}

LibraryFile::HeaderRow LibraryFile::RowOf(const std::filesystem::path& file) {
    return LibraryFile(file, OpenChecked(file, file.string())).row_;
}

std::unique_ptr<LibraryFile> LibraryFile::Open(const std::filesystem::path& file, const std::string& key,
                                               const std::string& shownName, const Access& access) {
    std::unique_ptr<Transaction> lock;
    auto connection = access.toWrite ? OpenLocked(file, shownName, access.wait, lock)
                                     : OpenChecked(file, shownName, access.wait);
    std::unique_ptr<LibraryFile> opened(new LibraryFile(file, std::move(connection), std::move(lock)));
    try {
        std::shared_ptr<const Envelope> envelope;
        // The key is derived while others may save: what was read before is looked at again.
        for (int attempt = 0; attempt < MostAttempts; ++attempt) {
            const bool fits = envelope && envelope->Id() == opened->header_.id &&
                              envelope->MacOf(opened->row_.header) == opened->row_.mac;
            if (!fits)
                envelope = Envelope::Of(opened->header_, opened->row_.header, opened->row_.mac, key);
            if (!envelope)
                return nullptr;
            if (opened->Accept(envelope))
                return opened;
            opened->ReadHeader();
        }
    } catch (const MalformedRecord& malformed) {
        Database& database = opened->opening_ ? *opened->opening_ : opened->GetDatabase();
        database.Damaged(malformed.what());
    }
    throw ComponentError(ErrorNumber::FileLocked,
                         "The file '" + shownName + "' is being saved by another program again and again.");
}

std::unique_ptr<LibraryFile> LibraryFile::Open(const std::filesystem::path& file,
                                               std::shared_ptr<const Envelope> envelope,
                                               const std::string& shownName) {
    std::unique_ptr<LibraryFile> opened(new LibraryFile(file, OpenChecked(file, shownName)));
    if (envelope->MacOf(opened->row_.header) != opened->row_.mac || envelope->Id() != opened->header_.id)
        opened->opening_->Damaged("its header does not match its digest");
    if (!opened->Accept(std::move(envelope)))
        throw ComponentError(ErrorNumber::FileChanged,
                             "The file '" + shownName + "' was changed by another program just now.");
    return opened;
}

LibraryFile::HeaderRow LibraryFile::ReadHeaderRow(Database& database) {
    Statement select(database, "SELECT id, header, mac FROM library");
    if (!select.Step() || select.Integer(0) != 1 || select.Blob(1).size() != FileHeader::EncodedSize ||
        select.Blob(2).size() != std::tuple_size_v<HeaderMac>)
        database.Damaged("it has no header");
    HeaderRow row;
    row.header.assign(select.Blob(1).begin(), select.Blob(1).end());
    std::copy(select.Blob(2).begin(), select.Blob(2).end(), row.mac.begin());
    if (select.Step())
        database.Damaged("it has two headers");
    return row;
}

FileHeader LibraryFile::DecodeHeader(Database& database, const HeaderRow& row) {
    try {
        const FileHeader header = FileHeader::Decode(row.header);
        const std::int64_t version = database.Number("PRAGMA user_version");
        RequireKnownVersion(database, version); // it may have changed since the file was looked at first
        if (header.version != version)
            database.Damaged("its header names another format version");
        return header;
    } catch (const MalformedRecord& malformed) {
        database.Damaged(std::string("its header cannot be read: ") + malformed.what());
    }
}

bool LibraryFile::Accept(std::shared_ptr<const Envelope> envelope) {
    Database& database = *opening_;
    const ReadTransaction reading(database);
    if (ReadHeaderRow(database) != row_)
        return false;
    container_ = std::make_shared<Container>(std::move(opening_), std::move(envelope));
    ReadRecords();
    read_ = DecodeState();
    return true;
}

void LibraryFile::ReadRecords() {
    for (const BlobKind kind : {BlobKind::MapRecord, BlobKind::IconRecord, BlobKind::MetadataRecord})
        container_->ForEachStored(kind, [&](std::int64_t number, ByteSpan stored) {
            records_[{kind, number}].stored = container_->GetEnvelope().DigestOf(stored);
        });
    if (container_->GetEnvelope().RootOf(RecordListOf(records_)) != header_.root)
        GetDatabase().Damaged("its records do not match their digest");
    const UsedNumbers used = UsedNumbers::Of(GetDatabase());
    if (used.smallest < 1)
        GetDatabase().Damaged("it uses a number below 1");
    if (used.largest >= header_.nextNumber)
        GetDatabase().Damaged("it uses numbers that its header calls unused");
}

Bytes LibraryFile::RecordOf(const RecordKey& key) {
    const auto record = records_.find(key);
    const std::optional<Bytes> stored = container_->GetStored(key.first, key.second);
    if (record == records_.end() || !stored)
        GetDatabase().Damaged(NameOf(key) + " is missing");
    Bytes plain;
    if (!container_->GetEnvelope().Open(key.first, key.second, *stored, record->second.stored, plain))
        GetDatabase().Damaged(NameOf(key) + " does not match its digest");
    record->second.plain = PlainDigest(plain);
    return plain;
}

LibraryState LibraryFile::ReadState() {
    if (read_)
        return *std::exchange(read_, std::nullopt);
    const ReadTransaction reading(GetDatabase());
    return DecodeState();
}

LibraryState LibraryFile::DecodeState() {
    LibraryState state;
    for (const auto& [key, digests] : records_) {
        try {
            if (key.first == BlobKind::MapRecord) {
                state.maps.push_back(std::make_shared<MapState>(
                    MapState{key.second, MapRecord::Decode(RecordOf(key)), {}, container_}));
                state.maps.back()->metadata =
                    DecodeMetadata(RecordOf({BlobKind::MetadataRecord, key.second}));
            } else if (key.first == BlobKind::IconRecord) {
                state.icons.push_back(std::make_shared<IconState>(
                    IconState{key.second, IconRecord::Decode(RecordOf(key)), {}, container_}));
                state.icons.back()->metadata =
                    DecodeMetadata(RecordOf({BlobKind::MetadataRecord, key.second}));
            }
        } catch (const MalformedRecord& malformed) {
            GetDatabase().Damaged(NameOf(key) + " cannot be read: " + malformed.what());
        }
    }
    if (state.maps.size() != static_cast<std::size_t>(header_.mapCount) ||
        state.icons.size() != static_cast<std::size_t>(header_.iconCount))
        GetDatabase().Damaged("its counts are not those of its header");
    if (header_.version != FormatVersionOf(state))
        GetDatabase().Damaged("its header names another format version than its maps need");
    if (LargestNumberIn(state) >= header_.nextNumber)
        GetDatabase().Damaged("it uses numbers that its header calls unused");
    return state;
}

bool LibraryFile::IsUnchanged() const {
    return !GetDatabase().HasMoved() && ReadHeaderRow(GetDatabase()) == row_;
}

void LibraryFile::RequireUnchanged() const {
    if (!IsUnchanged())
        throw ComponentError(ErrorNumber::FileChanged,
                             "The file '" + GetDatabase().ShownName() +
                                 "' was changed by another program since it was opened.");
}

bool LibraryFile::Holds(const FileHeader& header) const {
    return ReadHeaderRow(GetDatabase()).header == header.Encode();
}

void LibraryFile::Adopt(const FileHeader& header, RecordTable records) {
    header_ = header;
    row_.header = header.Encode();
    row_.mac = container_->GetEnvelope().MacOf(row_.header);
    records_ = std::move(records);
}
