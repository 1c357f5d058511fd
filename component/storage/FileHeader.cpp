#include "component/storage/FileHeader.h"

#include "component/storage/ByteCodec.h"

namespace {

constexpr std::uint8_t NoDerivation = 0;
constexpr std::uint8_t Argon2id13 = 1;

} // namespace

Bytes FileHeader::Encode() const {
    ByteWriter writer;
    writer.Integer(version);
    writer.Integer(static_cast<std::uint8_t>(sealed));
    writer.Integer(sealed ? Argon2id13 : NoDerivation);
    writer.Integer(std::uint16_t{0});
    writer.Integer(cost.operations);
    writer.Integer(cost.memoryKiB);
    writer.Raw(id);
    writer.Raw(salt);
    writer.Raw(wrapped);
    writer.Integer(generation);
    writer.Integer(nextNumber);
    writer.Integer(mapCount);
    writer.Integer(iconCount);
    writer.Raw(root);
    writer.Integer(std::uint64_t{0});
    return writer.Written();
}

Bytes FileHeader::BoundHead() const {
    FileHeader bound = *this;
    bound.version = SealingVersion;
    Bytes head = bound.Encode();
    head.resize(HeadSize);
    return head;
}

FileHeader FileHeader::Decode(ByteSpan bytes) {
    ByteReader reader(bytes);
    FileHeader header;
    header.version = reader.Integer<std::uint32_t>();
    header.sealed = reader.Flag();
    const auto derivation = reader.Integer<std::uint8_t>();
    ByteReader::Require(derivation == (header.sealed ? Argon2id13 : NoDerivation),
                        "it names an unknown key derivation");
    ByteReader::Require(reader.Integer<std::uint16_t>() == 0, "a reserved field is in use");
    header.cost.operations = reader.Integer<std::uint32_t>();
    header.cost.memoryKiB = reader.Integer<std::uint32_t>();
    header.id = reader.Array<16>();
    header.salt = reader.Array<16>();
    header.wrapped = reader.Array<72>();
    header.generation = reader.Integer<std::int64_t>();
    header.nextNumber = reader.Integer<std::int64_t>();
    header.mapCount = reader.Integer<std::int32_t>();
    header.iconCount = reader.Integer<std::int32_t>();
    header.root = reader.Array<32>();
    ByteReader::Require(reader.Integer<std::uint64_t>() == 0, "a reserved field is in use");
    reader.End();
    ByteReader::Require(header.mapCount >= 0 && header.iconCount >= 0, "a count is negative");
    ByteReader::Require(header.CountsAreInRange(), "its generation or next number is impossible");
    return header;
}

bool FileHeader::CountsAreInRange() const {
    return generation >= 0 && generation <= LargestCount && nextNumber >= 1 && nextNumber <= LargestCount;
}
