#include "component/storage/Records.h"

#include "base/ComponentError.h"
#include "component/scaling/Scaling.h"
#include "component/storage/ByteCodec.h"
#include "component/storage/MapParticulars.h"

#include <set>

namespace {

constexpr std::uint8_t RecordVersion = 1;
constexpr std::uint8_t MapRecordWithParticulars = 2;

void Require(bool holds, const char* reason) {
    ByteReader::Require(holds, reason);
}

void WriteRef(ByteWriter& writer, const BlobRef& ref) {
    writer.Integer(ref.number);
    writer.Integer(ref.length);
    writer.Integer(ref.codec);
    writer.Raw(ref.digest);
}

BlobRef ReadRef(ByteReader& reader) {
    BlobRef ref;
    ref.number = reader.Integer<std::int64_t>();
    ref.length = reader.Integer<std::uint32_t>();
    ref.codec = reader.Integer<std::uint32_t>();
    ref.digest = reader.Array<16>();
    Require(ref.number >= 1, "a blob has no number");
    Require(ref.codec == PngCodec, "a picture is of an unknown kind");
    return ref;
}

void WritePalette(ByteWriter& writer, const Palette& palette) {
    writer.Integer(static_cast<std::uint16_t>(palette.size()));
    for (const PaletteEntry& entry : palette)
        for (const std::uint8_t sample : {entry.red, entry.green, entry.blue, entry.alpha})
            writer.Integer(sample);
}

Palette ReadPalette(ByteReader& reader, PixelFormat format) {
    const auto count = reader.Integer<std::uint16_t>();
    Require(format == PixelFormat::Palette ? count >= 1 && count <= 256 : count == 0,
            "its palette has an impossible size");
    Palette palette(count);
    for (PaletteEntry& entry : palette) {
        const auto samples = reader.Array<4>();
        entry = {samples[0], samples[1], samples[2], samples[3]};
    }
    return palette;
}

void WriteGeoreference(ByteWriter& writer, const Georeference& georeference) {
    writer.Integer(static_cast<std::uint8_t>(georeference.datum.has_value()));
    if (georeference.datum)
        for (const double number : georeference.datum->AsNumbers())
            writer.Double(number);
    writer.Integer(static_cast<std::uint8_t>(georeference.grid.has_value()));
    if (georeference.grid) {
        writer.Integer(georeference.grid->method);
        writer.Integer(georeference.grid->zone);
        for (const double number : georeference.grid->values)
            writer.Double(number);
    }
    writer.Integer(georeference.gridIdentifier);
    writer.Text(georeference.zone);
    writer.Integer(static_cast<std::uint8_t>(georeference.kind));
    for (const ReferencePoint& point : georeference.points) {
        writer.Double(point.x);
        writer.Double(point.y);
        writer.Integer(point.pixelX);
        writer.Integer(point.pixelY);
    }
}

std::size_t PointsOf(std::uint8_t kind) {
    switch (static_cast<ScalingKind>(kind)) {
    case ScalingKind::None:
        return 0;
    case ScalingKind::Linear:
        return 3;
    case ScalingKind::Polar:
        return 4;
    }
    throw MalformedRecord("its scaling is of an unknown kind");
}

GridNumbers ReadGrid(ByteReader& reader, std::uint8_t version) {
    GridNumbers grid;
    grid.method = reader.Integer<std::int32_t>();
    Require(version > RecordVersion || !IsReserved(grid.method),
            "its projection method is none of its record's version");
    grid.zone = reader.Integer<std::int32_t>();
    for (double& number : grid.values)
        number = reader.FiniteDouble();
    return grid;
}

Georeference ReadGeoreference(ByteReader& reader, std::uint8_t version) {
    Georeference georeference;
    if (reader.Flag()) {
        QuorvantDatum::Numbers numbers{};
        for (double& number : numbers)
            number = reader.FiniteDouble();
        georeference.datum = QuorvantDatum(numbers);
    }
    if (reader.Flag())
        georeference.grid = ReadGrid(reader, version);
    georeference.gridIdentifier = reader.Integer<std::int32_t>();
    georeference.zone = reader.Text();
    const auto kind = reader.Integer<std::uint8_t>();
    georeference.points.resize(PointsOf(kind));
    georeference.kind = static_cast<ScalingKind>(kind);
    for (ReferencePoint& point : georeference.points) {
        point.x = reader.FiniteDouble();
        point.y = reader.FiniteDouble();
        point.pixelX = reader.Integer<std::int32_t>();
        point.pixelY = reader.Integer<std::int32_t>();
    }
    return georeference;
}

PixelFormat ReadFormat(ByteReader& reader) {
    const auto format = static_cast<PixelFormat>(reader.Integer<std::uint8_t>());
    Require(BytesPerPixel(format) != 0, "its pixels are of an unknown kind");
    return format;
}

std::vector<PageRef> ReadPages(ByteReader& reader, std::int64_t expected) {
    const auto count = reader.Integer<std::uint32_t>();
    Require(count == expected, "its tile directory has the wrong length");
    Require(std::uint64_t{count} * 24 <= reader.Left(), "it breaks off");
    std::vector<PageRef> pages(count);
    for (PageRef& page : pages) {
        page.number = reader.Integer<std::int64_t>();
        page.digest = reader.Array<16>();
        Require(page.number >= 1, "a directory page has no number");
    }
    return pages;
}

/// A sheet's size as a layout, with the layout's own refusals turned into the reader's.
PyramidLayout CheckedLayout(const MapRecord& record) {
    try {
        return record.Layout();
    } catch (const ComponentError&) {
        throw MalformedRecord("its size is impossible");
    }
}

} // namespace

std::uint8_t MapRecord::Version() const {
    return RecordVersionFor(georeference);
}

Bytes MapRecord::Encode() const {
    ByteWriter writer;
    writer.Integer(Version());
    writer.Text(name);
    writer.Text(identifier);
    writer.Integer(static_cast<std::uint8_t>(format));
    for (const std::int32_t size : {width, height, tileWidth, tileHeight})
        writer.Integer(size);
    WritePalette(writer, palette);
    writer.Double(zoom);
    WriteGeoreference(writer, georeference);
    writer.Integer(static_cast<std::uint32_t>(pages.size()));
    for (const PageRef& page : pages) {
        writer.Integer(page.number);
        writer.Raw(page.digest);
    }
    if (Version() == MapRecordWithParticulars)
        WriteParticulars(writer, georeference);
    return writer.Written();
}

MapRecord MapRecord::Decode(ByteSpan bytes) {
    ByteReader reader(bytes);
    const auto version = reader.Integer<std::uint8_t>();
    Require(version == RecordVersion || version == MapRecordWithParticulars,
            "its record is of an unknown version");
    MapRecord record;
    record.name = reader.Text();
    record.identifier = reader.Text();
    record.format = ReadFormat(reader);
    for (std::int32_t* size : {&record.width, &record.height, &record.tileWidth, &record.tileHeight})
        *size = reader.Integer<std::int32_t>();
    record.palette = ReadPalette(reader, record.format);
    record.zoom = reader.FiniteDouble();
    Require(record.zoom > 0, "its zoom is not positive");
    record.georeference = ReadGeoreference(reader, version);
    record.pages = ReadPages(reader, PagesFor(CheckedLayout(record).Entries()));
    if (version == MapRecordWithParticulars)
        ReadParticulars(reader, record.georeference);
    reader.End();
    return record;
}

Bytes IconRecord::Encode() const {
    ByteWriter writer;
    writer.Integer(RecordVersion);
    writer.Text(name);
    for (const std::int32_t value : {width, height, offsetX, offsetY})
        writer.Integer(value);
    WriteRef(writer, picture);
    return writer.Written();
}

IconRecord IconRecord::Decode(ByteSpan bytes) {
    ByteReader reader(bytes);
    Require(reader.Integer<std::uint8_t>() == RecordVersion, "its record is of an unknown version");
    IconRecord record;
    record.name = reader.Text();
    for (std::int32_t* value : {&record.width, &record.height, &record.offsetX, &record.offsetY})
        *value = reader.Integer<std::int32_t>();
    Require(record.width >= 1 && record.height >= 1 &&
                std::int64_t{record.width} * record.height <= LargestIconPixels,
            "its size is impossible");
    record.picture = ReadRef(reader);
    reader.End();
    return record;
}

Bytes EncodeMetadata(const MetadataList& metadata) {
    ByteWriter writer;
    writer.Integer(RecordVersion);
    writer.Integer(static_cast<std::uint32_t>(metadata.size()));
    for (const auto& [key, value] : metadata) {
        writer.Text(key);
        writer.Text(value);
    }
    return writer.Written();
}

MetadataList DecodeMetadata(ByteSpan bytes) {
    ByteReader reader(bytes);
    Require(reader.Integer<std::uint8_t>() == RecordVersion, "its metadata are of an unknown version");
    const auto count = reader.Integer<std::uint32_t>();
    Require(std::uint64_t{count} * 8 <= reader.Left(), "its metadata break off");
    MetadataList metadata;
    metadata.reserve(count);
    std::set<std::string> seen;
    for (std::uint32_t i = 0; i < count; ++i) {
        std::string key = reader.Text();
        Require(seen.insert(key).second, "a metadata key occurs twice");
        metadata.emplace_back(std::move(key), reader.Text());
    }
    reader.End();
    return metadata;
}

Bytes EncodePage(std::span<const BlobRef> entries) {
    ByteWriter writer;
    for (const BlobRef& entry : entries)
        WriteRef(writer, entry);
    return writer.Written();
}

std::vector<BlobRef> DecodePage(ByteSpan bytes) {
    Require(bytes.size() % BlobRef::EncodedSize == 0, "a directory page breaks off");
    ByteReader reader(bytes);
    std::vector<BlobRef> entries(bytes.size() / BlobRef::EncodedSize);
    for (BlobRef& entry : entries)
        entry = ReadRef(reader);
    return entries;
}
