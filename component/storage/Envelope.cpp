#include "component/storage/Envelope.h"

#include "base/ComponentError.h"
#include "component/storage/ByteCodec.h"
#include "component/storage/FileHeader.h"

#include <algorithm>

namespace {

/// A plain digest where a sealed file has a keyed one: 16 bytes, then zeros.
HeaderMac PlainMac(ByteSpan bytes) {
    const Digest digest = PlainDigest(bytes);
    HeaderMac mac{};
    std::copy(digest.begin(), digest.end(), mac.begin());
    return mac;
}

} // namespace

Envelope::Keys Envelope::MakeKeys(DerivedKeys derived, const Secret& dataKey) {
    return {std::move(derived.mac), Subkey(dataKey, KeyUse::Blobs), Subkey(dataKey, KeyUse::Records),
            Subkey(dataKey, KeyUse::Root)};
}

std::shared_ptr<const Envelope> Envelope::Plain() {
    std::shared_ptr<Envelope> envelope(new Envelope);
    FillRandom(envelope->id_);
    envelope->cost_ = {0, 0};
    return envelope;
}

std::shared_ptr<const Envelope> Envelope::Sealed(const std::string& key, const KeyCost& cost) {
    if (!cost.IsAcceptable())
        throw ComponentError(ErrorNumber::InvalidArgument,
                             "A key takes 1 to 4 passes over 8 to 512 megabytes of memory.");
    std::shared_ptr<Envelope> envelope(new Envelope);
    FillRandom(envelope->id_);
    FillRandom(envelope->salt_);
    envelope->cost_ = cost;
    DerivedKeys derived = DeriveKeys(key, envelope->salt_, cost);
    const Secret dataKey = NewDataKey();
    FileHeader header;
    header.sealed = true;
    envelope->Describe(header);
    envelope->wrapped_ = WrapDataKey(dataKey, derived, header.BoundHead());
    envelope->keys_ = MakeKeys(std::move(derived), dataKey);
    return envelope;
}

std::shared_ptr<const Envelope> Envelope::Of(const FileHeader& header, ByteSpan headerBytes,
                                             const HeaderMac& mac, const std::string& key) {
    std::shared_ptr<Envelope> envelope(new Envelope);
    envelope->id_ = header.id;
    envelope->cost_ = header.cost;
    envelope->salt_ = header.salt;
    envelope->wrapped_ = header.wrapped;
    if (!header.sealed) {
        ByteReader::Require(PlainMac(headerBytes) == mac, "its header does not match its digest");
        return envelope;
    }
    // Before anything is derived: a hostile header must not burn memory or hours.
    ByteReader::Require(header.cost.IsAcceptable(), "its header asks for an impossible key derivation");
    DerivedKeys derived = DeriveKeys(key, header.salt, header.cost);
    if (!EqualInConstantTime(KeyedHash(headerBytes, derived.mac), mac))
        return nullptr;
    Secret dataKey(32);
    ByteReader::Require(UnwrapDataKey(header.wrapped, derived, header.BoundHead(), dataKey),
                        "its data key does not open");
    envelope->keys_ = MakeKeys(std::move(derived), dataKey);
    return envelope;
}

const Secret& Envelope::KeyFor(BlobKind kind) const {
    return kind == BlobKind::Tile || kind == BlobKind::IconPicture ? keys_->blobs : keys_->records;
}

Bytes Envelope::BoundData(BlobKind kind, std::int64_t number) const {
    ByteWriter writer;
    writer.Integer(SealingVersion);
    writer.Raw(id_);
    writer.Integer(static_cast<std::uint8_t>(kind));
    writer.Integer(number);
    return writer.Written();
}

ClosedBlob Envelope::Close(BlobKind kind, std::int64_t number, ByteSpan plain) const {
    ClosedBlob closed;
    if (IsSealed()) {
        closed.owned = Seal(plain, BoundData(kind, number), KeyFor(kind));
        closed.bytes = closed.owned;
    } else {
        closed.bytes = plain;
    }
    closed.digest = DigestOf(closed.bytes);
    return closed;
}

bool Envelope::Open(BlobKind kind, std::int64_t number, ByteSpan stored, const Digest& digest,
                    Bytes& plain) const {
    if ((IsSealed() && stored.size() < SealOverhead) || DigestOf(stored) != digest)
        return false;
    if (IsSealed())
        return Unseal(stored, BoundData(kind, number), KeyFor(kind), plain);
    plain.assign(stored.begin(), stored.end());
    return true;
}

Digest Envelope::DigestOf(ByteSpan stored) const {
    if (!IsSealed())
        return PlainDigest(stored);
    Digest tag{};
    if (stored.size() >= tag.size())
        std::copy(stored.end() - static_cast<std::ptrdiff_t>(tag.size()), stored.end(), tag.begin());
    return tag;
}

void Envelope::Describe(FileHeader& header) const {
    header.sealed = header.sealed || IsSealed();
    header.id = id_;
    header.cost = cost_;
    header.salt = salt_;
    header.wrapped = wrapped_;
}

HeaderMac Envelope::RootOf(ByteSpan recordList) const {
    return IsSealed() ? KeyedHash(recordList, keys_->root) : PlainMac(recordList);
}

HeaderMac Envelope::MacOf(ByteSpan headerBytes) const {
    return IsSealed() ? KeyedHash(headerBytes, keys_->mac) : PlainMac(headerBytes);
}
