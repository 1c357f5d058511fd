#pragma once

#include "component/storage/LibraryFile.h"
#include "component/storage/files/PageScan.h"

#include <map>

/// A library file that may be damaged anywhere, read row by row. What is given is what was stored: blobs and
/// pages match the digests that name them, and in a sealed file everything opens under the file's key.
class DamagedFile {
public:
    explicit DamagedFile(const std::filesystem::path& file);

    /// Finds the header and with it the form of the file. False when the key is wrong. Throws FileDamaged
    /// where no header is sound and nothing can be read without one.
    bool Open(const std::string& key);

    const std::filesystem::path& Path() const { return scan_.Path(); }
    const std::shared_ptr<const Envelope>& GetEnvelope() const { return envelope_; }
    /// Nothing where no header is sound: a plain file then, whose records nothing vouches for.
    const std::optional<FileHeader>& Header() const { return header_; }
    /// Whether the records are all there and are what was stored last: the header says so.
    bool RecordsAreWhole() const { return recordsAreWhole_; }

    struct Records {
        std::map<std::int64_t, MapRecord> maps;
        std::map<std::int64_t, IconRecord> icons;
        std::map<std::int64_t, MetadataList> metadata;
    };
    const Records& GetRecords() const { return records_; }

    /// The plain bytes of the blob or page of this number and digest; nothing when it is not there.
    std::optional<Bytes> Find(BlobKind kind, std::int64_t number, const Digest& digest) const;

private:
    using Rows = std::vector<PageScan::Row>;

    bool FindHeader(const std::string& key);
    void ReadRecords();
    template <typename Record, typename Decode>
    void ReadRecord(BlobKind kind, std::int64_t number, const Rows& rows,
                    std::map<std::int64_t, Record>& records, const Decode& decode);

    PageScan scan_;
    std::map<std::int64_t, Rows> rows_; ///< with one blob: those in use before those in free pages
    Rows headers_;
    std::optional<FileHeader> header_;
    std::shared_ptr<const Envelope> envelope_;
    Records records_;
    RecordTable table_;
    bool recordsAreWhole_ = false;
};
