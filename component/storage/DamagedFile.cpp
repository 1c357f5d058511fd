#include "component/storage/DamagedFile.h"

#include "component/storage/ByteCodec.h"

#include <algorithm>

namespace {

constexpr std::size_t MacSize = std::tuple_size_v<HeaderMac>;

bool IsHeaderRow(const PageScan::Row& row) {
    return row.number == 1 && row.lengths.size() == 2 && row.lengths[0] == FileHeader::EncodedSize &&
           row.lengths[1] == MacSize;
}

/// A header as it stands in a row, with its code.
struct StoredHeader {
    Bytes bytes;
    HeaderMac mac{};
    FileHeader header;
};

std::optional<StoredHeader> HeaderIn(const PageScan& scan, const PageScan::Row& row) {
    const auto blobs = scan.BlobsOf(row);
    if (!blobs || blobs->size() != FileHeader::EncodedSize + MacSize)
        return std::nullopt;
    StoredHeader stored;
    stored.bytes.assign(blobs->begin(), blobs->begin() + FileHeader::EncodedSize);
    std::copy(blobs->begin() + FileHeader::EncodedSize, blobs->end(), stored.mac.begin());
    try {
        stored.header = FileHeader::Decode(stored.bytes);
        return stored;
    } catch (const MalformedRecord&) {
        return std::nullopt;
    }
}

} // namespace

DamagedFile::DamagedFile(const std::filesystem::path& file) : scan_(file) {
    scan_.ForEachRow([this](const PageScan::Row& row) {
        if (IsHeaderRow(row))
            headers_.push_back(row);
        else if (row.lengths.size() == 1 && row.number >= 1)
            rows_[row.number].push_back(row);
    });
    for (auto& [number, rows] : rows_)
        std::ranges::stable_sort(rows, {}, &PageScan::Row::isFree);
}

bool DamagedFile::Open(const std::string& key) {
    if (!FindHeader(key))
        return false;
    ReadRecords();
    if (!header_ && records_.maps.empty() && records_.icons.empty())
        throw ComponentError(
            ErrorNumber::FileDamaged,
            "The file '" + Path().string() +
                "' is damaged beyond salvage: neither its header nor a record of it can be read, as "
                "none of a sealed library can without its header.");
    return true;
}

bool DamagedFile::FindHeader(const std::string& key) {
    bool isSealed = false;
    for (const PageScan::Row& row : headers_) {
        const auto stored = HeaderIn(scan_, row);
        if (!stored || (header_ && header_->generation >= stored->header.generation))
            continue;
        try {
            const auto envelope = Envelope::Of(stored->header, stored->bytes, stored->mac, key);
            isSealed = isSealed || !envelope;
            if (!envelope)
                continue;
            envelope_ = envelope;
            header_ = stored->header;
        } catch (const MalformedRecord&) {
            continue; // not what was stored
        }
    }
    if (!envelope_ && isSealed)
        return false;
    if (!envelope_)
        envelope_ = Envelope::Plain();
    return true;
}

template <typename Record, typename Decode>
void DamagedFile::ReadRecord(BlobKind kind, std::int64_t number, const Rows& rows,
                             std::map<std::int64_t, Record>& records, const Decode& decode) {
    for (const PageScan::Row& row : rows) {
        const auto stored = scan_.BlobsOf(row);
        Bytes plain;
        if (!stored || !envelope_->Open(kind, number, *stored, envelope_->DigestOf(*stored), plain))
            continue;
        try {
            records.emplace(number, decode(plain));
            table_[{kind, number}] = {envelope_->DigestOf(*stored), {}};
            return;
        } catch (const MalformedRecord&) {
            continue; // a row of another table, or a damaged one
        }
    }
}

void DamagedFile::ReadRecords() {
    for (const auto& [number, rows] : rows_) {
        ReadRecord(BlobKind::MapRecord, number, rows, records_.maps, MapRecord::Decode);
        if (!records_.maps.contains(number))
            ReadRecord(BlobKind::IconRecord, number, rows, records_.icons, IconRecord::Decode);
        if (records_.maps.contains(number) || records_.icons.contains(number))
            ReadRecord(BlobKind::MetadataRecord, number, rows, records_.metadata, DecodeMetadata);
    }
    recordsAreWhole_ = header_ && envelope_->RootOf(RecordListOf(table_)) == header_->root;
}

std::optional<Bytes> DamagedFile::Find(BlobKind kind, std::int64_t number, const Digest& digest) const {
    const auto found = rows_.find(number);
    if (found == rows_.end())
        return std::nullopt;
    for (const PageScan::Row& row : found->second) {
        const auto stored = scan_.BlobsOf(row);
        Bytes plain;
        if (stored && envelope_->Open(kind, number, *stored, digest, plain))
            return plain;
    }
    return std::nullopt;
}
