#pragma once

#include "component/storage/Sealing.h"

#include <memory>
#include <optional>

struct FileHeader;

/// What a stored blob is. The numbers are part of what a sealed blob is bound to and never change.
enum class BlobKind : std::uint8_t {
    Tile = 1,
    IconPicture = 2,
    DirectoryPage = 3,
    MapRecord = 4,
    IconRecord = 5,
    MetadataRecord = 6,
    UnsavedState = 7, ///< in a scratch alone
};

/// A blob in the form in which it is stored.
struct ClosedBlob {
    ByteSpan bytes; ///< of `owned` in a sealed file, the caller's own bytes in a plain one
    Digest digest{};
    Bytes owned;
};

/// The form in which a library's blobs are stored: plain, or sealed under the library's data key. Its
/// operations on blobs may be used by several threads at once.
class Envelope {
public:
    static std::shared_ptr<const Envelope> Plain();
    /// A fresh library id, salt and data key under the key text. Costs one key derivation.
    /// InvalidArgument for a cost that no reader accepts.
    static std::shared_ptr<const Envelope> Sealed(const std::string& key, const KeyCost& cost);
    /// The envelope of an existing file; nothing when the key is wrong. Throws MalformedRecord when the
    /// header asks for a derivation that no writer would ask for.
    static std::shared_ptr<const Envelope> Of(const FileHeader& header, ByteSpan headerBytes,
                                              const HeaderMac& mac, const std::string& key);

    bool IsSealed() const { return keys_.has_value(); }
    const LibraryId& Id() const { return id_; }

    ClosedBlob Close(BlobKind kind, std::int64_t number, ByteSpan plain) const;
    /// False when the stored bytes are not the blob that this digest, kind and number stand for.
    bool Open(BlobKind kind, std::int64_t number, ByteSpan stored, const Digest& digest, Bytes& plain) const;
    /// The digest that stored bytes carry: computed in a plain file, their tag in a sealed one.
    Digest DigestOf(ByteSpan stored) const;

    /// Writes id, key cost, salt and wrapped key into a header that is about to be stored.
    void Describe(FileHeader& header) const;
    /// The digest over all records, and the code over the whole header.
    HeaderMac RootOf(ByteSpan recordList) const;
    HeaderMac MacOf(ByteSpan headerBytes) const;

private:
    struct Keys {
        Secret mac;
        Secret blobs;
        Secret records;
        Secret root;
    };
    Envelope() = default;
    static Keys MakeKeys(DerivedKeys derived, const Secret& dataKey);
    const Secret& KeyFor(BlobKind kind) const;
    Bytes BoundData(BlobKind kind, std::int64_t number) const;

    LibraryId id_{};
    KeyCost cost_;
    Salt salt_{};
    WrappedKey wrapped_{};
    std::optional<Keys> keys_;
};
