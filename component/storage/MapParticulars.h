#pragma once

#include "component/Georeference.h"
#include "component/storage/ByteCodec.h"

// What only a map record of version 2 has: behind the fields of version 1 the identity of the coordinate
// system, the points as entered and check sets.

/// The version of the record that this georeference needs: 1 wherever that holds all of it, so that programs
/// which know no other read the file.
std::uint8_t RecordVersionFor(const Georeference& georeference);

void WriteParticulars(ByteWriter& writer, const Georeference& georeference);
/// Fills in what follows the record's other fields, which have been read. Throws MalformedRecord, also for a
/// record that could have been one of version 1.
void ReadParticulars(ByteReader& reader, Georeference& georeference);
