#include "component/library/Salvage.h"

#include "component/library/MissingTiles.h"
#include "component/storage/ByteCodec.h"
#include "component/storage/TileDirectory.h"
#include "component/storage/TileForm.h"
#include "component/tiles/TileCodec.h"

#include <algorithm>
#include <set>

namespace {

/// A place in a pyramid, by its position in the count over all levels.
struct TilePlace {
    int level = 0;
    std::int32_t row = 0;
    std::int32_t column = 0;
};

TilePlace PlaceOf(const PyramidLayout& layout, std::int64_t entry) {
    TilePlace place;
    while (place.level + 1 < layout.Levels() && layout.Level(place.level + 1).firstEntry <= entry)
        ++place.level;
    const PyramidLevel& at = layout.Level(place.level);
    place.row = static_cast<std::int32_t>((entry - at.firstEntry) / at.columns);
    place.column = static_cast<std::int32_t>((entry - at.firstEntry) % at.columns);
    return place;
}

std::string NameOf(const MetadataList& metadata, const std::string& own) {
    const std::string name = MetadataValue(metadata, "name");
    return name.empty() ? own : name;
}

} // namespace

/// One map on its way.
class Salvage::MapCopy {
public:
    MapCopy(Salvage& salvage, const MapRecord& record, std::string name)
        : salvage_(salvage), record_(record), name_(std::move(name)), layout_(record.Layout()), form_(record),
          missing_(record), writer_(*salvage.to_, salvage.numbers_, layout_) {}

    std::vector<PageRef> Copy() {
        ReadDirectory();
        for (std::int64_t entry = 0; entry < layout_.Entries(); ++entry) {
            salvage_.progress_.ThrowIfCancelled();
            CopyTile(entry);
            salvage_.progress_.Add(1);
        }
        return writer_.Finish();
    }

private:
    void ReadDirectory() {
        for (std::size_t page = 0; page < record_.pages.size(); ++page) {
            const std::int64_t first = static_cast<std::int64_t>(page) * EntriesPerPage;
            const std::int64_t count = std::min(EntriesPerPage, layout_.Entries() - first);
            std::vector<BlobRef> entries = Page(record_.pages[page]);
            if (static_cast<std::int64_t>(entries.size()) != count)
                entries.assign(static_cast<std::size_t>(count), BlobRef()); // number 0: not known
            entries_.insert(entries_.end(), entries.begin(), entries.end());
        }
    }

    std::vector<BlobRef> Page(const PageRef& ref) const {
        const auto plain = salvage_.from_.Find(BlobKind::DirectoryPage, ref.number, ref.digest);
        if (!plain)
            return {};
        try {
            return DecodePage(*plain);
        } catch (const MalformedRecord&) {
            return {};
        }
    }

    /// The tile as it was stored; empty when it is lost.
    Bytes Sound(std::int64_t entry) {
        const BlobRef& ref = entries_.at(static_cast<std::size_t>(entry));
        const auto plain =
            ref.number > 0 ? salvage_.from_.Find(BlobKind::Tile, ref.number, ref.digest) : std::nullopt;
        try {
            if (plain)
                form_.Check(*plain, entry);
        } catch (const ComponentError& error) {
            if (error.Number() != ErrorNumber::FileDamaged)
                throw;
            return {};
        }
        return plain.value_or(Bytes());
    }

    void CopyTile(std::int64_t entry) {
        const TilePlace at = PlaceOf(layout_, entry);
        Bytes png = Sound(entry);
        if (png.empty())
            png = Replaced(entry, at);
        else
            ++salvage_.report_.tiles;
        writer_.Put(at.level, at.row, at.column, png);
    }

    Bytes Replaced(std::int64_t entry, const TilePlace& at) {
        const std::string object = "Map '" + name_ + "', level " + std::to_string(at.level) + ", row " +
                                   std::to_string(at.row) + ", column " + std::to_string(at.column);
        Bytes png;
        if (at.level == 0) {
            png = missing_.Empty(at.level, at.row, at.column);
            isEmpty_.insert(entry);
            salvage_.Damaged(object, "The tile is damaged or missing; its pixels are empty.");
        } else {
            bool isWhole = true;
            png = missing_.Overview(at.level, at.row, at.column, [&](std::int32_t row, std::int32_t column) {
                const std::int64_t below = layout_.Entry(at.level - 1, row, column);
                isWhole = isWhole && !isEmpty_.contains(below);
                return Below(below);
            });
            if (!isWhole)
                isEmpty_.insert(entry);
            salvage_.Damaged(object,
                             isWhole ? "The overview was damaged or missing and has been built anew."
                                     : "The overview was damaged or missing and has been built anew, with "
                                       "empty pixels where those below it are lost.");
        }
        replaced_[entry] = png;
        return png;
    }

    Bytes Below(std::int64_t entry) {
        const auto replaced = replaced_.find(entry);
        return replaced != replaced_.end() ? replaced->second : Sound(entry);
    }

    Salvage& salvage_;
    const MapRecord& record_;
    std::string name_;
    PyramidLayout layout_;
    TileForm form_;
    MissingTiles missing_;
    TileWriter writer_;
    std::vector<BlobRef> entries_;
    std::map<std::int64_t, Bytes> replaced_;
    std::set<std::int64_t> isEmpty_; ///< entries with pixels that are lost
};

Salvage::Salvage(const DamagedFile& from, std::shared_ptr<Container> to, NumberSource& numbers,
                 Progress& progress)
    : from_(from), to_(std::move(to)), numbers_(numbers), progress_(progress) {}

void Salvage::Damaged(std::string object, std::string reason) {
    report_.damages.push_back({std::move(object), std::move(reason)});
}

LibraryState Salvage::Copy() {
    const DamagedFile::Records& records = from_.GetRecords();
    std::int64_t work = 1;
    for (const auto& [id, record] : records.maps)
        work += record.Layout().Entries();
    progress_.Expect(work);
    NameWhatIsLost();
    LibraryState state;
    for (const auto& [id, record] : records.maps)
        CopyMap(id, record, state);
    for (const auto& [id, record] : records.icons)
        CopyIcon(id, record, state);
    return state;
}

void Salvage::NameWhatIsLost() {
    const DamagedFile::Records& records = from_.GetRecords();
    const auto& header = from_.Header();
    if (!header)
        Damaged("Library",
                "The header is damaged or missing: whether maps or icons are missing cannot be told.");
    const auto nameLost = [this](std::int64_t expected, std::size_t found, const std::string& what) {
        if (const std::int64_t lost = expected - static_cast<std::int64_t>(found); lost > 0)
            Damaged("Library", "The records of " + std::to_string(lost) + " " + what +
                                   (lost == 1 ? "" : "s") +
                                   " are damaged or missing, and with them all of the " + what +
                                   (lost == 1 ? "." : "s."));
    };
    if (header) {
        nameLost(header->mapCount, records.maps.size(), "map");
        nameLost(header->iconCount, records.icons.size(), "icon");
    }
    if (!from_.RecordsAreWhole())
        Damaged("Library",
                from_.GetEnvelope()->IsSealed()
                    ? "The records do not match their digest all together: some are missing, or are those of "
                      "an earlier state."
                    : "The records do not match their digest all together: names, texts, sizes and "
                      "georeference of every map and icon should be looked at.");
}

MetadataList Salvage::MetadataOf(std::int64_t id, const std::string& object) {
    const auto found = from_.GetRecords().metadata.find(id);
    if (found != from_.GetRecords().metadata.end())
        return found->second;
    Damaged(object, "The metadata are damaged or missing.");
    return {};
}

void Salvage::CopyMap(std::int64_t id, const MapRecord& record, LibraryState& state) {
    auto map = std::make_shared<MapState>();
    map->id = numbers_.Allocate();
    map->record = record;
    map->metadata = MetadataOf(id, "Map '" + record.name + "'");
    map->container = to_;
    map->record.pages = MapCopy(*this, record, NameOf(map->metadata, record.name)).Copy();
    state.maps.push_back(std::move(map));
    ++report_.maps;
}

void Salvage::CopyIcon(std::int64_t id, const IconRecord& record, LibraryState& state) {
    progress_.ThrowIfCancelled();
    auto icon = std::make_shared<IconState>();
    icon->id = numbers_.Allocate();
    icon->record = record;
    icon->metadata = MetadataOf(id, "Icon '" + record.name + "'");
    icon->container = to_;
    auto png = from_.Find(BlobKind::IconPicture, record.picture.number, record.picture.digest);
    try {
        TileDecoder decoder;
        std::vector<std::uint8_t> pixels;
        if (png)
            DecodeWhole(decoder, *png, record.width, record.height, pixels);
    } catch (const ComponentError& error) {
        if (error.Number() != ErrorNumber::FileDamaged)
            throw;
        png.reset();
    }
    if (!png) {
        const std::ptrdiff_t stride = std::ptrdiff_t{4} * record.width;
        const Bytes nothing(static_cast<std::size_t>(stride) * static_cast<std::size_t>(record.height));
        png = EncodeInSteps({nothing.data(), stride, record.width, record.height, PixelFormat::Rgba, nullptr},
                            progress_);
        Damaged("Icon '" + NameOf(icon->metadata, record.name) + "'",
                "The picture is damaged or missing; it is empty.");
    }
    icon->record.picture.number = numbers_.Allocate();
    const ClosedBlob closed = to_->Put(BlobKind::IconPicture, icon->record.picture.number, *png);
    icon->record.picture.length = static_cast<std::uint32_t>(closed.bytes.size());
    icon->record.picture.digest = closed.digest;
    state.icons.push_back(std::move(icon));
    ++report_.icons;
}
