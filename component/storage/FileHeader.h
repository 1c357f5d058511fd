#pragma once

#include "component/storage/Sealing.h"

/// Version of a library whose maps' records are all of version 1, and the newest that is read and written.
/// A file is of the version that its maps need, so that older programs read whatever they can.
inline constexpr std::uint32_t FirstFormatVersion = 1;
inline constexpr std::uint32_t NewestFormatVersion = 2;

/// What stands in the place of the format version in all that sealed values are bound to. It is that of the
/// sealing and stays when a file's version changes: nothing needs to be sealed anew then.
inline constexpr std::uint32_t SealingVersion = 1;

/// The plain head of a library file, one row of fixed length, covered by a code over all of it.
struct FileHeader {
    /// Length of the encoded header in bytes, and of its head, to which the wrapped key is bound.
    static constexpr std::size_t EncodedSize = 184;
    static constexpr std::size_t HeadSize = 48;
    /// Largest generation and next number: far from where counting would overflow, and never reached.
    static constexpr std::int64_t LargestCount = std::int64_t{1} << 62;

    std::uint32_t version = FirstFormatVersion;
    bool sealed = false;
    KeyCost cost{0, 0}; ///< zeros in a plain file
    LibraryId id{};
    Salt salt{};
    WrappedKey wrapped{};
    std::int64_t generation = 0; ///< grows by one with every save
    std::int64_t nextNumber = 1; ///< the first number that no map, icon, page or blob has had yet
    std::int32_t mapCount = 0;
    std::int32_t iconCount = 0;
    HeaderMac root{}; ///< over the digests of all records

    /// Whether generation and next number are such as a reader takes.
    bool CountsAreInRange() const;
    Bytes Encode() const;
    /// What the wrapped key is bound to: the encoded header's head, with the sealing's version.
    Bytes BoundHead() const;
    /// Throws MalformedRecord.
    static FileHeader Decode(ByteSpan bytes);
};
