// Sealing and the form in which blobs stand in a file. The fixed values were computed by libsodium's Python
// binding, hashlib and python-xxhash from the format's description.

#include "base/ComponentError.h"
#include "component/storage/ByteCodec.h"
#include "component/storage/Envelope.h"
#include "component/storage/FileHeader.h"
#include "component/storage/Sealing.h"
#include "tests/storage/CheapKey.h"
#include "tests/storage/Hex.h"

#include <gtest/gtest.h>

namespace {

constexpr const char* Key = "Bl\u00e5b\u00e6rgr\u00f8d";
constexpr const char* HeaderHex =
    "01000000010100000100000000200000a0a1a2a3a4a5a6a7a8a9aaabacadaeaf000102030405060708090a0b0c0d0e0f"
    "010101010101010101010101010101010101010101010101e78c72d987b2ef666a803b342988d094648cf7eec20b930e"
    "f5445751149f28d5249026f3230ddfcd4d364e599884312305000000000000000a000000000000000100000000000000"
    "490eb323f0fd494e3faa1d1640c49eed327ae190e14a6b4668dd91c87ff77b600000000000000000";
constexpr const char* MacHex = "78b72b4170553e6d33e64f9cdbcad7c8fde5e2f2496d096446ceb2eee28e8132";
constexpr const char* RootHex = "490eb323f0fd494e3faa1d1640c49eed327ae190e14a6b4668dd91c87ff77b60";
constexpr const char* RecordListHex = "040900000000000000000102030405060708090a0b0c0d0e0f";

struct SealedVector {
    BlobKind kind;
    std::int64_t number;
    const char* plain;
    const char* hex;
};

constexpr std::array<SealedVector, 3> Vectors{{
    {BlobKind::Tile, 7, "tile seven",
     "020202020202020202020202020202020202020202020202347282f28c94c3bdb144aa5050d37a707464c1623fb66da8afc8"},
    {BlobKind::DirectoryPage, 8, "page eight",
     "0303030303030303030303030303030303030303030303034cb5653aa636caf704771967488026055c449d759851164c978e"},
    {BlobKind::MapRecord, 9, "map nine",
     "040404040404040404040404040404040404040404040404982ae4d442fb6ecc4c68431a6af383185d7b1a816d9df70f"},
}};

HeaderMac MacOf(const Bytes& bytes) {
    HeaderMac mac{};
    std::copy(bytes.begin(), bytes.end(), mac.begin());
    return mac;
}

std::shared_ptr<const Envelope> OpenHeader(const Bytes& header, const Bytes& mac, const std::string& key) {
    return Envelope::Of(FileHeader::Decode(header), header, MacOf(mac), key);
}

/// A sealed envelope's header and mac as they stand in a file.
std::pair<Bytes, Bytes> HeaderOf(const Envelope& envelope) {
    FileHeader header;
    envelope.Describe(header);
    const Bytes bytes = header.Encode();
    const HeaderMac mac = envelope.MacOf(bytes);
    return {bytes, {mac.begin(), mac.end()}};
}

bool Opens(const Envelope& envelope, BlobKind kind, std::int64_t number, ByteSpan stored) {
    Bytes plain;
    return envelope.Open(kind, number, stored, envelope.DigestOf(stored), plain);
}

} // namespace

TEST(PlainDigest, IsXxh3OfAHundredTwentyEightBitsMostSignificantByteFirst) {
    const auto digest = [](std::string_view text) {
        const Digest d = PlainDigest(AsBytes(text));
        return Bytes(d.begin(), d.end());
    };
    EXPECT_EQ(digest("abc"), FromHex("06b05ab6733a618578af5f94892f3950"));
    EXPECT_EQ(digest(""), FromHex("99aa06d3014798d86001c324468d497f"));
}

TEST(Envelope, OpensTheFixedHeaderAndBlobs) {
    const auto envelope = OpenHeader(FromHex(HeaderHex), FromHex(MacHex), Key);
    ASSERT_NE(envelope, nullptr);
    EXPECT_TRUE(envelope->IsSealed());
    for (const SealedVector& vector : Vectors) {
        const Bytes stored = FromHex(vector.hex);
        Bytes plain;
        EXPECT_TRUE(envelope->Open(vector.kind, vector.number, stored, envelope->DigestOf(stored), plain));
        EXPECT_EQ(plain, BytesOf(vector.plain));
    }
    EXPECT_EQ(envelope->RootOf(FromHex(RecordListHex)), MacOf(FromHex(RootHex)));
    EXPECT_EQ(envelope->MacOf(FromHex(HeaderHex)), MacOf(FromHex(MacHex)));
}

TEST(Envelope, OpensTheFixedHeaderUnderTheKeyTypedDecomposed) {
    EXPECT_NE(OpenHeader(FromHex(HeaderHex), FromHex(MacHex), "Bla\u030ab\u00e6rgr\u00f8d"), nullptr);
    EXPECT_EQ(OpenHeader(FromHex(HeaderHex), FromHex(MacHex), "Blab\u00e6rgr\u00f8d"), nullptr);
    EXPECT_EQ(OpenHeader(FromHex(HeaderHex), FromHex(MacHex), ""), nullptr);
}

TEST(Envelope, TakesAnyChangeOfTheHeaderForAWrongKey) {
    const Bytes header = FromHex(HeaderHex), mac = FromHex(MacHex);
    for (const unsigned at : {16U, 32U, 50U, 119U, 120U, 128U, 136U, 140U, 144U, 175U}) {
        Bytes changed = header;
        changed[at] = static_cast<std::uint8_t>(changed[at] ^ 1);
        EXPECT_EQ(OpenHeader(changed, mac, Key), nullptr) << at;
    }
    Bytes otherMac = mac;
    otherMac[31] = static_cast<std::uint8_t>(otherMac[31] ^ 0x80);
    EXPECT_EQ(OpenHeader(header, otherMac, Key), nullptr);
}

TEST(Envelope, RefusesCostsOutsideTheLimitsBeforeItDerivesAnything) {
    const Bytes header = FromHex(HeaderHex), mac = FromHex(MacHex);
    const auto withCost = [&](std::uint32_t operations, std::uint32_t memoryKiB) {
        FileHeader changed = FileHeader::Decode(header);
        changed.cost = {operations, memoryKiB};
        return Envelope::Of(changed, changed.Encode(), MacOf(mac), Key);
    };
    // The last would take 4 TiB and for ever.
    for (const auto& [operations, memory] :
         {std::pair{0U, 8192U}, {5U, 8192U}, {1U, 8191U}, {1U, 524289U}, {4294967295U, 4294967295U}})
        EXPECT_THROW(withCost(operations, memory), MalformedRecord) << operations << ", " << memory;
    EXPECT_EQ(withCost(2, 8192), nullptr);
    EXPECT_THROW(Envelope::Sealed(Key, {5, 8192}), ComponentError);
    EXPECT_THROW(Envelope::Sealed(Key, {1, 524289}), ComponentError);
}

TEST(Envelope, OpensABlobOnlyAsWhatItIs) {
    const auto envelope = OpenHeader(FromHex(HeaderHex), FromHex(MacHex), Key);
    for (const SealedVector& vector : Vectors) {
        const Bytes stored = FromHex(vector.hex);
        EXPECT_TRUE(Opens(*envelope, vector.kind, vector.number, stored));
        EXPECT_FALSE(Opens(*envelope, vector.kind, vector.number + 1, stored));
        for (const BlobKind kind : {BlobKind::Tile, BlobKind::IconPicture, BlobKind::DirectoryPage,
                                    BlobKind::MapRecord, BlobKind::IconRecord, BlobKind::MetadataRecord})
            EXPECT_EQ(Opens(*envelope, kind, vector.number, stored), kind == vector.kind);
        for (std::size_t at = 0; at < stored.size(); ++at) {
            Bytes changed = stored;
            changed[at] = static_cast<std::uint8_t>(changed[at] ^ 4);
            EXPECT_FALSE(Opens(*envelope, vector.kind, vector.number, changed)) << at;
        }
        for (const std::size_t length : {std::size_t{0}, std::size_t{15}, std::size_t{39}, stored.size() - 1})
            EXPECT_FALSE(Opens(*envelope, vector.kind, vector.number, ByteSpan(stored).first(length)));
        Bytes plain;
        EXPECT_FALSE(envelope->Open(vector.kind, vector.number, stored, Digest{}, plain)) << "another digest";
    }
}

TEST(Envelope, OfAnotherLibraryUnderTheSameKeyOpensNothing) {
    const auto one = Envelope::Sealed("key", Cheap), other = Envelope::Sealed("key", Cheap);
    EXPECT_NE(one->Id(), other->Id());
    const ClosedBlob closed = one->Close(BlobKind::Tile, 1, BytesOf("tile"));
    EXPECT_TRUE(Opens(*one, BlobKind::Tile, 1, closed.bytes));
    EXPECT_FALSE(Opens(*other, BlobKind::Tile, 1, closed.bytes));
}

TEST(Envelope, BindsBlobsToTheLibraryId) {
    // The same data key under another id: the header's code is made anew, as a thief of the key could.
    const auto one = Envelope::Sealed("key", Cheap);
    const ClosedBlob closed = one->Close(BlobKind::Tile, 1, BytesOf("tile"));
    const auto [header, mac] = HeaderOf(*one);
    Bytes changed = header;
    changed[16] = static_cast<std::uint8_t>(changed[16] ^ 1);
    const HeaderMac forged = one->MacOf(changed);
    EXPECT_THROW(OpenHeader(changed, {forged.begin(), forged.end()}, "key"), MalformedRecord)
        << "the data key is bound to the header's head";
}

TEST(Envelope, SealsEveryTimeAnew) {
    const auto envelope = Envelope::Sealed("key", Cheap);
    const Bytes plain = BytesOf("the same text");
    const ClosedBlob first = envelope->Close(BlobKind::Tile, 1, plain),
                     second = envelope->Close(BlobKind::Tile, 1, plain);
    EXPECT_NE(first.owned, second.owned);
    EXPECT_EQ(first.bytes.size(), plain.size() + SealOverhead);
    EXPECT_TRUE(Opens(*envelope, BlobKind::Tile, 1, first.bytes));
    EXPECT_TRUE(Opens(*envelope, BlobKind::Tile, 1, envelope->Close(BlobKind::Tile, 1, {}).bytes));
}

TEST(Envelope, OfAFileIsTheOneThatWroteIt) {
    const auto written = Envelope::Sealed("key", Cheap);
    const ClosedBlob closed = written->Close(BlobKind::IconPicture, 3, BytesOf("picture"));
    const auto [header, mac] = HeaderOf(*written);
    const auto read = OpenHeader(header, mac, "key");
    ASSERT_NE(read, nullptr);
    EXPECT_TRUE(Opens(*read, BlobKind::IconPicture, 3, closed.bytes));
    EXPECT_EQ(OpenHeader(header, mac, "kez"), nullptr);
}

TEST(Envelope, OfAPlainFileStoresAsItIsAndChecksDigests) {
    const auto envelope = Envelope::Plain();
    const Bytes plain = BytesOf("tile");
    const ClosedBlob closed = envelope->Close(BlobKind::Tile, 1, plain);
    EXPECT_EQ(Bytes(closed.bytes.begin(), closed.bytes.end()), plain);
    EXPECT_EQ(closed.digest, PlainDigest(plain));
    Bytes opened;
    EXPECT_TRUE(envelope->Open(BlobKind::Tile, 1, plain, closed.digest, opened));
    EXPECT_EQ(opened, plain);
    EXPECT_FALSE(envelope->Open(BlobKind::Tile, 1, BytesOf("tiles"), closed.digest, opened));
    const auto [header, mac] = HeaderOf(*envelope);
    EXPECT_NE(OpenHeader(header, mac, "any key"), nullptr);
    Bytes changed = header;
    changed[136] = 1;
    EXPECT_THROW(OpenHeader(changed, mac, ""), MalformedRecord);
}

TEST(Sealing, NormalisesKeysToComposedForm) {
    EXPECT_EQ(NormalizedKey("A\u030a").Text(), "\u00c5");
    EXPECT_EQ(NormalizedKey("\u212b").Text(), "\u00c5");
    EXPECT_EQ(NormalizedKey("e\u0302\u0323").Text(), "\u1ec7");
    EXPECT_EQ(NormalizedKey("\u1112\u1161\u11ab").Text(), "\ud55c");
    EXPECT_EQ(NormalizedKey("\ufb01 \u2460 \uff21").Text(), "\ufb01 \u2460 \uff21")
        << "no compatibility forms";
    EXPECT_EQ(NormalizedKey("  Aa\t\n").Text(), "  Aa\t\n") << "nothing trimmed or folded";
    EXPECT_EQ(NormalizedKey(std::string("a\0b", 3)).Text(), std::string("a\0b", 3));
    EXPECT_EQ(NormalizedKey("\xff\x80 no utf8").Text(), "\xff\x80 no utf8");
    EXPECT_EQ(NormalizedKey("").Text(), "");
}

TEST(Sealing, AcceptsCostsWithinTheLimits) {
    EXPECT_TRUE(KeyCost{}.IsAcceptable());
    EXPECT_TRUE((KeyCost{1, 8192}.IsAcceptable()));
    EXPECT_TRUE((KeyCost{4, 524288}.IsAcceptable()));
    EXPECT_FALSE((KeyCost{0, 0}.IsAcceptable()));
}

TEST(RememberedKey, KnowsTheKeyThatItWasGivenInAnyForm) {
    RememberedKey remembered;
    EXPECT_TRUE(remembered.Is(""));
    remembered.Remember("\u00c5");
    EXPECT_TRUE(remembered.Is("A\u030a"));
    EXPECT_FALSE(remembered.Is("A"));
    EXPECT_FALSE(remembered.Is(""));
    remembered.Remember("");
    EXPECT_TRUE(remembered.Is(""));
}
