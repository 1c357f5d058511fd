// The records of a library: whatever decodes must encode to the same bytes again.

#include "component/storage/ByteCodec.h"
#include "component/storage/FileHeader.h"
#include "component/storage/Records.h"

#include <cstdlib>

namespace {

void RequireSame(const Bytes& encoded, ByteSpan input) {
    if (!std::equal(encoded.begin(), encoded.end(), input.begin(), input.end()))
        std::abort();
}

/// The first byte chooses the kind of record.
void Decode(std::uint8_t kind, ByteSpan input) {
    switch (kind % 5) {
    case 0:
        RequireSame(MapRecord::Decode(input).Encode(), input);
        break;
    case 1:
        RequireSame(IconRecord::Decode(input).Encode(), input);
        break;
    case 2:
        RequireSame(EncodeMetadata(DecodeMetadata(input)), input);
        break;
    case 3:
        RequireSame(EncodePage(DecodePage(input)), input);
        break;
    default:
        RequireSame(FileHeader::Decode(input).Encode(), input);
        break;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    try {
        Decode(data[0], {data + 1, size - 1});
    } catch (const MalformedRecord&) {
        // The orderly answer to what no writer wrote.
    }
    return 0;
}
