#include "tests/faults/Forger.h"

#include "component/storage/Envelope.h"

Forger::Forger(const std::filesystem::path& file) : database_(file, Database::Mode::Existing, file.string()) {
    database_.Execute("BEGIN IMMEDIATE");
    header_ = FileHeader::Decode(Value("SELECT header FROM library WHERE id = ?1", 1));
}

Forger::~Forger() {
    const auto plain = Envelope::Plain();
    RecordTable records;
    constexpr std::pair<BlobKind, const char*> tables[] = {
        {BlobKind::MapRecord, "SELECT id, record FROM map"},
        {BlobKind::IconRecord, "SELECT id, record FROM icon"},
        {BlobKind::MetadataRecord, "SELECT id, record FROM metadata"}};
    for (const auto& [kind, sql] : tables) {
        Statement rows(database_, sql);
        while (rows.Step())
            records[{kind, rows.Integer(0)}].stored = plain->DigestOf(rows.Blob(1));
    }
    header_.root = plain->RootOf(RecordListOf(records));
    const Bytes encoded = header_.Encode();
    const HeaderMac mac = plain->MacOf(encoded);
    Put("UPDATE library SET header = ?2 WHERE id = ?1", 1, encoded);
    Put("UPDATE library SET mac = ?2 WHERE id = ?1", 1, mac);
    database_.Execute("COMMIT");
}

Bytes Forger::Value(const char* sql, std::int64_t number) {
    Statement select(database_, sql);
    if (!select.Bind(1, number).Step())
        throw std::runtime_error("there is no such row");
    const ByteSpan value = select.Blob(0);
    return {value.begin(), value.end()};
}

void Forger::Put(const char* sql, std::int64_t number, ByteSpan bytes) {
    Statement(database_, sql).Bind(1, number).Bind(2, bytes).Run();
}

MapRecord Forger::Map(std::int64_t number) {
    return MapRecord::Decode(Value("SELECT record FROM map WHERE id = ?1", number));
}

void Forger::PutMap(std::int64_t number, const MapRecord& record) {
    Put("UPDATE map SET record = ?2 WHERE id = ?1", number, record.Encode());
}

IconRecord Forger::Icon(std::int64_t number) {
    return IconRecord::Decode(Value("SELECT record FROM icon WHERE id = ?1", number));
}

void Forger::PutIcon(std::int64_t number, const IconRecord& record) {
    Put("UPDATE icon SET record = ?2 WHERE id = ?1", number, record.Encode());
}

std::vector<std::int64_t> Forger::Numbers(const std::string& table) {
    Statement rows(database_, ("SELECT id FROM " + table + " ORDER BY id").c_str());
    std::vector<std::int64_t> numbers;
    while (rows.Step())
        numbers.push_back(rows.Integer(0));
    return numbers;
}

std::vector<BlobRef> Forger::Page(const PageRef& page) {
    return DecodePage(Value("SELECT data FROM tile_index WHERE id = ?1", page.number));
}

PageRef Forger::PutPage(std::int64_t number, const std::vector<BlobRef>& entries) {
    const Bytes page = EncodePage(entries);
    Put("INSERT OR REPLACE INTO tile_index(id, data) VALUES(?1, ?2)", number, page);
    return {number, PlainDigest(page)};
}

BlobRef Forger::PutBlob(std::int64_t number, ByteSpan bytes) {
    Put("INSERT OR REPLACE INTO blob(id, data) VALUES(?1, ?2)", number, bytes);
    BlobRef entry;
    entry.number = number;
    entry.length = static_cast<std::uint32_t>(bytes.size());
    entry.digest = PlainDigest(bytes);
    return entry;
}

std::vector<std::int64_t> MapNumbers(const std::filesystem::path& file) {
    Database database(file, Database::Mode::Existing, file.string());
    Statement rows(database, "SELECT id FROM map ORDER BY id");
    std::vector<std::int64_t> numbers;
    while (rows.Step())
        numbers.push_back(rows.Integer(0));
    return numbers;
}
