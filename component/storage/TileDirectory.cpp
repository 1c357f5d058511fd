#include "component/storage/TileDirectory.h"

#include "component/storage/ByteCodec.h"

#include <algorithm>
#include <unordered_set>

namespace {

/// 64 pages hold the directory of 64,000 tiles: several screens of every level.
constexpr std::size_t PagesKept = 64;

std::span<const BlobRef> EntriesOfPage(std::span<const BlobRef> entries, std::size_t page) {
    const std::size_t first = page * static_cast<std::size_t>(EntriesPerPage);
    return entries.subspan(first, std::min(static_cast<std::size_t>(EntriesPerPage), entries.size() - first));
}

PageRef WritePage(Container& container, std::int64_t number, std::span<const BlobRef> entries) {
    const Bytes page = EncodePage(entries);
    return {number, container.Put(BlobKind::DirectoryPage, number, page).digest};
}

} // namespace

TileReader::TileReader(std::shared_ptr<Container> container, PyramidLayout layout, std::vector<PageRef> pages,
                       std::string mapName)
    : container_(std::move(container)), layout_(std::move(layout)), pages_(std::move(pages)),
      mapName_(std::move(mapName)), mutex_(std::make_unique<std::mutex>()) {}

std::string TileReader::Place(std::int64_t entry) const {
    int level = 0;
    while (level + 1 < layout_.Levels() && layout_.Level(level + 1).firstEntry <= entry)
        ++level;
    const PyramidLevel& at = layout_.Level(level);
    const std::int64_t index = entry - at.firstEntry;
    return "Map '" + mapName_ + "', level " + std::to_string(level) + ", row " +
           std::to_string(index / at.columns) + ", column " + std::to_string(index % at.columns);
}

void TileReader::Damaged(const std::string& what) const {
    throw ComponentError(ErrorNumber::FileDamaged, "The file '" + container_->GetDatabase().ShownName() +
                                                       "' is damaged: " + what + ".");
}

std::vector<BlobRef> TileReader::LoadPage(std::int64_t index) {
    const PageRef& ref = pages_.at(static_cast<std::size_t>(index));
    const std::string place =
        "the tile directory of map '" + mapName_ + "', page " + std::to_string(index + 1);
    Bytes plain;
    if (!container_->Get(BlobKind::DirectoryPage, ref.number, ref.digest, plain))
        Damaged(place + ", does not match its digest");
    const std::int64_t expected = std::min(EntriesPerPage, layout_.Entries() - index * EntriesPerPage);
    try {
        std::vector<BlobRef> entries = DecodePage(plain);
        if (static_cast<std::int64_t>(entries.size()) == expected)
            return entries;
    } catch (const MalformedRecord&) {
        // Told below like a page of the wrong length.
    }
    Damaged(place + ", contradicts itself");
}

const std::vector<BlobRef>& TileReader::Page(std::int64_t index) {
    const auto found =
        std::find_if(kept_.begin(), kept_.end(), [index](const auto& page) { return page.first == index; });
    if (found != kept_.end()) {
        kept_.splice(kept_.begin(), kept_, found);
    } else {
        kept_.emplace_front(index, LoadPage(index));
        if (kept_.size() > PagesKept)
            kept_.pop_back();
    }
    return kept_.front().second;
}

BlobRef TileReader::Entry(std::int64_t entry) {
    const std::scoped_lock lock(*mutex_);
    return Page(entry / EntriesPerPage).at(static_cast<std::size_t>(entry % EntriesPerPage));
}

Bytes TileReader::ReadStored(std::int64_t entry) {
    return ReadStored(entry, Entry(entry));
}

Bytes TileReader::ReadStored(std::int64_t entry, const BlobRef& ref) {
    std::optional<Bytes> stored = container_->GetStored(BlobKind::Tile, ref.number);
    if (!stored)
        Damaged(Place(entry) + ", is missing");
    if (stored->size() != ref.length || container_->GetEnvelope().DigestOf(*stored) != ref.digest)
        Damaged(Place(entry) + ", does not match its digest");
    return std::move(*stored);
}

Bytes TileReader::ReadEntry(std::int64_t entry) {
    const BlobRef ref = Entry(entry);
    Bytes stored = ReadStored(entry, ref);
    if (!container_->GetEnvelope().IsSealed())
        return stored;
    Bytes plain;
    if (!container_->GetEnvelope().Open(BlobKind::Tile, ref.number, stored, ref.digest, plain))
        Damaged(Place(entry) + ", does not match its digest");
    return plain;
}

std::vector<std::uint8_t> TileReader::ReadTile(int level, std::int32_t row, std::int32_t column) {
    return ReadEntry(layout_.Entry(level, row, column));
}

void TileReader::RefuseTile(int level, std::int32_t row, std::int32_t column,
                            const std::string& reason) const {
    const std::string end = reason.ends_with('.') ? reason.substr(0, reason.size() - 1) : reason;
    Damaged(Place(layout_.Entry(level, row, column)) + ": " + end);
}

std::size_t TileWriter::DigestHash::operator()(const Digest& digest) const {
    std::size_t hash = 0;
    std::memcpy(&hash, digest.data(), sizeof(hash));
    return hash;
}

TileWriter::TileWriter(Container& container, NumberSource& numbers, const PyramidLayout& layout)
    : container_(container), numbers_(numbers), layout_(layout),
      entries_(static_cast<std::size_t>(layout.Entries())) {
    // A seed that no image can know, so that none can be made whose tiles pass for each other.
    std::array<std::uint8_t, sizeof(seed_)> random{};
    FillRandom(random);
    std::memcpy(&seed_, random.data(), sizeof(seed_));
}

void TileWriter::Put(int level, std::int32_t row, std::int32_t column,
                     std::span<const std::uint8_t> encoded) {
    const auto entry = layout_.Entry(level, row, column);
    const Digest content = PlainDigest(encoded, seed_);
    {
        const std::scoped_lock lock(mutex_);
        if (const auto same = entryOf_.find(content); same != entryOf_.end()) {
            entries_[static_cast<std::size_t>(entry)] = entries_[static_cast<std::size_t>(same->second)];
            return;
        }
    }
    BlobRef ref;
    ref.number = numbers_.Allocate();
    const ClosedBlob closed = container_.Put(BlobKind::Tile, ref.number, encoded);
    ref.length = static_cast<std::uint32_t>(closed.bytes.size());
    ref.digest = closed.digest;
    const std::scoped_lock lock(mutex_);
    entries_[static_cast<std::size_t>(entry)] = ref;
    entryOf_.emplace(content, entry);
}

std::vector<PageRef> TileWriter::Finish() {
    return WritePages(container_, numbers_, entries_);
}

std::vector<PageRef> WritePages(Container& container, NumberSource& numbers,
                                std::span<const BlobRef> entries) {
    std::vector<PageRef> pages;
    const auto count = static_cast<std::size_t>(PagesFor(static_cast<std::int64_t>(entries.size())));
    for (std::size_t page = 0; page < count; ++page)
        pages.push_back(WritePage(container, numbers.Allocate(), EntriesOfPage(entries, page)));
    return pages;
}

namespace {

/// One copy of a map's tiles from container to container.
class TileCopy {
public:
    TileCopy(TileReader& source, Container& from, Container& to, NumberSource* fresh)
        : source_(source), from_(from), to_(to), fresh_(fresh),
          asStored_(fresh == nullptr && &from.GetEnvelope() == &to.GetEnvelope()) {}

    BlobRef Copy(std::int64_t entry) {
        const BlobRef former = source_.Entry(entry);
        const auto [place, isNew] = copied_.try_emplace(former.number);
        if (!isNew)
            return place->second;
        BlobRef ref = former;
        if (asStored_) {
            to_.PutStored(BlobKind::Tile, former.number, source_.ReadStored(entry));
        } else {
            if (fresh_ != nullptr)
                ref.number = fresh_->Allocate();
            const ClosedBlob closed = to_.Put(BlobKind::Tile, ref.number, source_.ReadEntry(entry));
            ref.length = static_cast<std::uint32_t>(closed.bytes.size());
            ref.digest = closed.digest;
        }
        place->second = ref;
        return ref;
    }

    PageRef CopyPage(const PageRef& former, std::span<const BlobRef> entries) {
        const auto [place, isNew] = copiedPages_.try_emplace(former.number);
        if (isNew)
            place->second = CopyNewPage(former, entries);
        return place->second;
    }

private:
    PageRef CopyNewPage(const PageRef& former, std::span<const BlobRef> entries) {
        if (asStored_) {
            // The page was checked against this digest when the entries were read from it.
            const std::optional<Bytes> stored = from_.GetStored(BlobKind::DirectoryPage, former.number);
            if (!stored || from_.GetEnvelope().DigestOf(*stored) != former.digest)
                from_.GetDatabase().Damaged("a page of a tile directory does not match its digest");
            to_.PutStored(BlobKind::DirectoryPage, former.number, *stored);
            return former;
        }
        return WritePage(to_, fresh_ != nullptr ? fresh_->Allocate() : former.number, entries);
    }

    TileReader& source_;
    Container& from_;
    Container& to_;
    NumberSource* fresh_;
    bool asStored_;
    std::unordered_map<std::int64_t, BlobRef> copied_; ///< identical tiles share a blob
    std::unordered_map<std::int64_t, PageRef> copiedPages_;
};

} // namespace

std::vector<PageRef> CopyTiles(TileReader& source, Container& from, const PyramidLayout& layout,
                               const std::vector<PageRef>& pages, Container& to, NumberSource* fresh,
                               Progress& progress) {
    TileCopy copy(source, from, to, fresh);
    std::vector<PageRef> copiedPages;
    std::vector<BlobRef> entries;
    for (std::int64_t entry = 0; entry < layout.Entries(); ++entry) {
        progress.ThrowIfCancelled();
        entries.push_back(copy.Copy(entry));
        progress.Add(1);
        if (static_cast<std::int64_t>(entries.size()) == EntriesPerPage || entry + 1 == layout.Entries()) {
            copiedPages.push_back(copy.CopyPage(pages.at(copiedPages.size()), entries));
            entries.clear();
        }
    }
    return copiedPages;
}
