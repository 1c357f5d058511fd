#include "tests/faults/LibraryContent.h"

#include <algorithm>
#include <bit>
#include <span>
#include <string_view>

namespace {

/// FNV-1a over 8 bytes at a time: tells contents apart, with no code in common with the digests under test.
class Fingerprint {
public:
    void Number(std::uint64_t number) {
        value_ = (value_ ^ number) * 0x100000001b3ULL;
        value_ ^= value_ >> 29U;
    }
    void Bytes(std::span<const std::uint8_t> bytes) {
        Number(bytes.size());
        std::uint64_t word = 0;
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            word = word << 8U | bytes[i];
            if (i % 8 == 7)
                Number(word);
        }
        Number(word);
    }
    void Text(std::string_view text) {
        Bytes({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    }
    std::string Shown() const { return std::to_string(value_); }

private:
    std::uint64_t value_ = 0xcbf29ce484222325ULL;
};

void AddMetadata(Fingerprint& print, const Metadata& metadata) {
    print.Number(static_cast<std::uint64_t>(metadata.MetadataCount()));
    for (std::int32_t i = 1; i <= metadata.MetadataCount(); ++i) {
        print.Text(metadata.MetadataKeyAt(i));
        print.Text(metadata.MetadataValueAt(i));
    }
}

void AddPoints(Fingerprint& print, const std::vector<MeasuredPoint>& points) {
    print.Number(points.size());
    for (const MeasuredPoint& point : points) {
        for (const double number : {point.x, point.y, point.pixelX, point.pixelY})
            print.Number(std::bit_cast<std::uint64_t>(number));
        print.Text(point.label);
    }
}

void AddParticulars(Fingerprint& print, const Georeference& georeference) {
    const SystemIdentity& system = georeference.system;
    for (const std::string& text : {system.code, system.name, system.shiftCode, system.shiftName})
        print.Text(text);
    print.Number(std::bit_cast<std::uint64_t>(system.shiftAccuracy));
    print.Number(system.shiftUnknown ? 1 : 0);
    AddPoints(print, georeference.entered);
    for (const CheckSet& set : georeference.checks) {
        print.Text(set.name);
        AddPoints(print, set.points);
    }
}

void AddGeoreference(Fingerprint& print, const Georeference& georeference) {
    print.Number(static_cast<std::uint64_t>(georeference.kind));
    print.Number(static_cast<std::uint64_t>(georeference.gridIdentifier));
    print.Text(georeference.zone);
    for (const ReferencePoint& point : georeference.points) {
        print.Number(std::bit_cast<std::uint64_t>(point.x));
        print.Number(std::bit_cast<std::uint64_t>(point.y));
        print.Number(static_cast<std::uint64_t>(point.pixelX));
        print.Number(static_cast<std::uint64_t>(point.pixelY));
    }
    AddParticulars(print, georeference);
}

void AddMap(Fingerprint& print, AtlavexMap& map) {
    print.Text(map.Name());
    print.Text(map.Identifier());
    print.Number(static_cast<std::uint64_t>(map.Width()));
    print.Number(static_cast<std::uint64_t>(map.Format()));
    print.Number(std::bit_cast<std::uint64_t>(map.Zoom()));
    AddMetadata(print, map);
    AddGeoreference(print, map.MapGeoreference());
    map.ReadPixels([&](std::span<const std::uint8_t> rows, std::int32_t) { print.Bytes(rows); });
}

void AddIcon(Fingerprint& print, AtlavexIcon& icon) {
    print.Text(icon.Name());
    print.Number(static_cast<std::uint64_t>(icon.OffsetX()));
    print.Number(static_cast<std::uint64_t>(icon.OffsetY()));
    AddMetadata(print, icon);
    print.Bytes(icon.PngFile());
}

} // namespace

std::string ContentOf(AtlavexLibrary& library) {
    Fingerprint print;
    for (std::int32_t i = 1; i <= library.MapCount(); ++i)
        AddMap(print, *library.GetMap(library.MapIdAt(i)));
    for (std::int32_t i = 1; i <= library.IconCount(); ++i)
        AddIcon(print, *library.GetIcon(library.IconIdAt(i)));
    return std::to_string(library.MapCount()) + " maps, " + std::to_string(library.IconCount()) +
           " icons, content " + print.Shown();
}

std::string OneLine(std::string content) {
    std::ranges::replace(content, '\n', ' ');
    return content;
}

LibraryOptions CheapOptions(const std::string& scratchFolder) {
    LibraryOptions options;
    options.scratchFolder = scratchFolder;
    options.keyOperations = 1;
    options.keyMemoryMiB = 8;
    return options;
}
