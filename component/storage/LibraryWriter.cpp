#include "component/storage/LibraryWriter.h"

#include "component/storage/ByteCodec.h"
#include "component/storage/Schema.h"
#include "component/storage/TileDirectory.h"

#include <set>

LibraryWriter::LibraryWriter(std::shared_ptr<Container> target, RecordTable former, const LibraryState& state,
                             NumberSource& numbers)
    : target_(std::move(target)), former_(std::move(former)), state_(state), numbers_(numbers) {}

std::int64_t LibraryWriter::Work() const {
    auto work = static_cast<std::int64_t>(1 + state_.maps.size() + state_.icons.size());
    for (const auto& map : state_.maps)
        if (map->container != target_)
            work += map->record.Layout().Entries();
    return work;
}

void LibraryWriter::Write(FileHeader& header, Progress& progress) {
    records_ = former_;
    RemoveGoneRecords();
    for (const auto& map : state_.maps) {
        WriteMap(map, progress);
        progress.Add(1);
    }
    for (const auto& icon : state_.icons) {
        progress.ThrowIfCancelled();
        WriteIcon(icon);
        progress.Add(1);
    }
    WriteHeader(header);
    progress.ThrowIfCancelled();
    progress.Add(1);
}

bool LibraryWriter::IsGone(const RecordKey& key) const {
    return !staying_.contains(key.second);
}

/// What the maps and icons that stay in the file name there.
Belonging LibraryWriter::Staying() const {
    Belonging staying;
    for (const auto& map : state_.maps)
        if (map->container == target_)
            staying.Add(*map, true);
    for (const auto& icon : state_.icons)
        if (icon->container == target_)
            staying.Add(*icon);
    return staying;
}

void LibraryWriter::RemovePictures(const RecordKey& key, const Belonging& staying) {
    if (key.first == BlobKind::MapRecord) {
        placed_.keptForOthers += RemoveTiles(target_, MapRecord::Decode(FormerRecord(key)), staying);
    } else if (key.first == BlobKind::IconRecord) {
        const std::int64_t picture = IconRecord::Decode(FormerRecord(key)).picture.number;
        if (staying.HasBlob(picture))
            ++placed_.keptForOthers;
        else
            target_->Remove(BlobKind::IconPicture, picture);
    }
}

void LibraryWriter::RemoveGoneRecords() {
    for (const auto& map : state_.maps)
        staying_.insert(map->id);
    for (const auto& icon : state_.icons)
        staying_.insert(icon->id);
    std::vector<RecordKey> gone;
    for (const auto& [key, digests] : former_)
        if (IsGone(key))
            gone.push_back(key);
    if (gone.empty())
        return;
    const Belonging staying = Staying();
    for (const RecordKey& key : gone) {
        RemovePictures(key, staying);
        target_->Remove(key.first, key.second);
        records_.erase(key);
    }
}

Bytes LibraryWriter::FormerRecord(const RecordKey& key) {
    Bytes plain;
    if (!target_->Get(key.first, key.second, former_.at(key).stored, plain))
        target_->GetDatabase().Damaged("a record does not match its digest");
    return plain;
}

std::int64_t RemoveTiles(const std::shared_ptr<Container>& container, const MapRecord& record,
                         const Belonging& staying) {
    const PyramidLayout layout = record.Layout();
    TileReader reader(container, layout, record.pages, record.name);
    std::set<std::int64_t> kept;
    for (std::int64_t entry = 0; entry < layout.Entries(); ++entry) {
        try {
            const std::int64_t number = reader.Entry(entry).number;
            if (staying.HasBlob(number))
                kept.insert(number);
            else
                container->Remove(BlobKind::Tile, number);
        } catch (const ComponentError& error) {
            // A damaged page hides which tiles it lists. They stay as free cargo until the file is written
            // anew; the map must be removable all the same.
            if (error.Number() != ErrorNumber::FileDamaged)
                throw;
            entry += EntriesPerPage - 1 - entry % EntriesPerPage;
        }
    }
    for (const PageRef& page : record.pages)
        if (staying.HasPage(page.number))
            kept.insert(page.number);
        else
            container->Remove(BlobKind::DirectoryPage, page.number);
    return static_cast<std::int64_t>(kept.size());
}

void LibraryWriter::WriteMap(const std::shared_ptr<MapState>& map, Progress& progress) {
    progress.ThrowIfCancelled();
    MapRecord record = map->record;
    if (map->container != target_) {
        const PyramidLayout layout = record.Layout();
        TileReader reader(map->container, layout, record.pages, map->Name());
        NumberSource* fresh = copied_.Add(*map) > 0 ? &numbers_ : nullptr;
        record.pages = CopyTiles(reader, *map->container, layout, record.pages, *target_, fresh, progress);
        placed_.maps.push_back({map, record.pages});
    }
    WriteRecord({BlobKind::MapRecord, map->id}, record.Encode());
    WriteRecord({BlobKind::MetadataRecord, map->id}, EncodeMetadata(map->metadata));
}

void LibraryWriter::WriteIcon(const std::shared_ptr<IconState>& icon) {
    IconRecord record = icon->record;
    if (icon->container != target_) {
        record.picture = CopyPicture(*icon, *target_, copied_.Add(*icon) > 0 ? &numbers_ : nullptr);
        placed_.icons.push_back({icon, record.picture});
    }
    WriteRecord({BlobKind::IconRecord, icon->id}, record.Encode());
    WriteRecord({BlobKind::MetadataRecord, icon->id}, EncodeMetadata(icon->metadata));
}

void LibraryWriter::WriteRecord(const RecordKey& key, ByteSpan plain) {
    const Digest content = PlainDigest(plain);
    const auto former = former_.find(key);
    if (former != former_.end() && former->second.plain == content)
        return;
    const ClosedBlob closed = target_->Put(key.first, key.second, plain);
    records_[key] = {closed.digest, content};
}

/// In the file's first page, which the transaction covers as it does everything else.
void LibraryWriter::WriteVersion(std::uint32_t version) {
    Database& database = target_->GetDatabase();
    if (database.Number("PRAGMA user_version") != version)
        database.Execute(("PRAGMA user_version=" + std::to_string(version)).c_str());
}

void LibraryWriter::WriteHeader(FileHeader& header) {
    target_->GetEnvelope().Describe(header);
    header.version = FormatVersionOf(state_);
    WriteVersion(header.version);
    header.nextNumber = numbers_.Next();
    header.mapCount = static_cast<std::int32_t>(state_.maps.size());
    header.iconCount = static_cast<std::int32_t>(state_.icons.size());
    // Nothing would open the file again.
    if (!header.CountsAreInRange() || UsedNumbers::Of(target_->GetDatabase()).largest >= header.nextNumber)
        throw ComponentError(ErrorNumber::Failed, "The file '" + target_->GetDatabase().ShownName() +
                                                      "' cannot be saved: it has no numbers left.");
    header.root = target_->GetEnvelope().RootOf(RecordListOf(records_));
    const Bytes encoded = header.Encode();
    const HeaderMac mac = target_->GetEnvelope().MacOf(encoded);
    Statement(target_->GetDatabase(), "INSERT OR REPLACE INTO library(id, header, mac) VALUES(1, ?1, ?2)")
        .Bind(1, encoded)
        .Bind(2, mac)
        .Run();
}

void LibraryWriterResult::Apply(const std::shared_ptr<Container>& container) {
    for (PlacedMap& placed : maps) {
        placed.map->record.pages = std::move(placed.pages);
        placed.map->container = container;
    }
    for (const PlacedIcon& placed : icons) {
        placed.icon->record.picture = placed.picture;
        placed.icon->container = container;
    }
}

BlobRef CopyPicture(const IconState& icon, Container& to, NumberSource* fresh) {
    BlobRef ref = icon.record.picture;
    Bytes plain;
    if (!icon.container->Get(BlobKind::IconPicture, ref.number, ref.digest, plain))
        icon.container->GetDatabase().Damaged("the picture of icon '" + icon.Name() +
                                              "' does not match its digest");
    if (fresh != nullptr)
        ref.number = fresh->Allocate();
    const ClosedBlob closed = to.Put(BlobKind::IconPicture, ref.number, plain);
    ref.length = static_cast<std::uint32_t>(closed.bytes.size());
    ref.digest = closed.digest;
    return ref;
}
