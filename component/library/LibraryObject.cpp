#include "component/library/LibraryObject.h"
#include "component/readers/OpenImage.h"

#include "base/StandardErrors.h"
#include "component/storage/LibraryWriter.h"
#include "component/storage/Scratch.h"
#include "component/storage/Verification.h"
#include "component/tiles/PyramidBuilder.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace {

/// Decoded pictures of icons that are kept: two of the largest.
constexpr std::size_t IconPictureBytes = std::size_t{130} << 20;

constexpr char MapMark = 'm';
constexpr char IconMark = 'i';

/// A reference is a mark and the number under which the object is stored; callers only hand it back.
std::string ReferenceOf(char mark, std::int64_t id) {
    return mark + std::to_string(id);
}

std::int64_t IdOf(char mark, const std::string& reference) {
    std::int64_t id = 0;
    const char* end = reference.data() + reference.size();
    const bool isOne = reference.size() > 1 && reference.front() == mark &&
                       std::from_chars(reference.data() + 1, end, id).ptr == end;
    return isOne ? id : 0;
}

/// Room for one more, so that nothing can fail any more once a new object is complete.
template <typename List>
void MakeRoom(List& list) {
    if (list.size() == list.capacity())
        list.reserve(2 * list.size() + 1);
}

/// The object handed out for this number, if any, belongs to the library no more.
template <typename Objects>
void Forget(Objects& objects, std::int64_t id) {
    if (const auto object = objects.extract(id))
        object.mapped()->Detach();
}

[[noreturn]] void NoSuchMap() {
    throw ComponentError(ErrorNumber::NoSuchMap, "The library has no such map.");
}

[[noreturn]] void NoSuchIcon() {
    throw ComponentError(ErrorNumber::NoSuchIcon, "The library has no such icon.");
}

} // namespace

LibraryObject::LibraryObject(const LibraryOptions& options)
    : options_(options), files_(options.files ? options.files : SystemFiles()),
      operations_(std::make_shared<Operations>(*this)),
      views_(std::make_shared<ViewMemory>(options.threads, std::chrono::milliseconds(options.viewPatience),
                                          options.viewTiesUp)),
      pictures_(std::make_shared<RecentPictures>(IconPictureBytes)), envelope_(Envelope::Plain()) {}

LibraryObject::~LibraryObject() {
    // Objects that callers still hold must not reach a library that is gone.
    Replace({});
    direct_.reset();
}

std::string LibraryObject::MapIdAt(std::int32_t position) const {
    if (position < 1 || position > MapCount())
        NoSuchMap();
    return ReferenceOf(MapMark, state_.maps[static_cast<std::size_t>(position) - 1]->id);
}

std::string LibraryObject::IconIdAt(std::int32_t position) const {
    if (position < 1 || position > IconCount())
        NoSuchIcon();
    return ReferenceOf(IconMark, state_.icons[static_cast<std::size_t>(position) - 1]->id);
}

std::shared_ptr<AtlavexMap> LibraryObject::GetMap(const std::string& reference) {
    const std::int64_t id = IdOf(MapMark, reference);
    if (const auto known = mapObjects_.find(id); known != mapObjects_.end())
        return known->second;
    const auto found = FindId(state_.maps, id);
    if (found == state_.maps.end())
        NoSuchMap();
    auto object = std::make_shared<MapObject>(*found, operations_, views_, options_.threads);
    return mapObjects_.emplace(id, std::move(object)).first->second;
}

std::shared_ptr<AtlavexIcon> LibraryObject::GetIcon(const std::string& reference) {
    const std::int64_t id = IdOf(IconMark, reference);
    if (const auto known = iconObjects_.find(id); known != iconObjects_.end())
        return known->second;
    const auto found = FindId(state_.icons, id);
    if (found == state_.icons.end())
        NoSuchIcon();
    auto object = std::make_shared<IconObject>(*found, pictures_);
    return iconObjects_.emplace(id, std::move(object)).first->second;
}

std::shared_ptr<AtlavexMap> LibraryObject::Append(std::shared_ptr<MapState> map) {
    auto object = std::make_shared<MapObject>(map, operations_, views_, options_.threads);
    MakeRoom(state_.maps);
    mapObjects_.emplace(map->id, object);
    state_.maps.push_back(std::move(map));
    return object;
}

std::shared_ptr<AtlavexIcon> LibraryObject::Append(std::shared_ptr<IconState> icon) {
    auto object = std::make_shared<IconObject>(icon, pictures_);
    MakeRoom(state_.icons);
    iconObjects_.emplace(icon->id, object);
    state_.icons.push_back(std::move(icon));
    return object;
}

void LibraryObject::SetScratchFolder(const std::string& folder) {
    if (folder == options_.scratchFolder)
        return;
    options_.scratchFolder = folder;
    scratch_.reset(); // the maps and icons in it hold it for as long as they need it
}

std::shared_ptr<Container> LibraryObject::ContainerForNew() {
    if (options_.newTiles == NewTiles::LibraryFile && file_) {
        if (!direct_) {
            auto transaction = std::make_unique<Transaction>(file_->GetDatabase());
            file_->RequireUnchanged();
            direct_ = std::move(transaction);
        }
        return file_->Tiles();
    }
    return Scratch();
}

std::shared_ptr<Container> LibraryObject::Scratch() {
    if (!scratch_)
        scratch_ = MakeScratch(files_, options_.scratchFolder, envelope_,
                               KeepsWork() ? ScratchKind::Kept : ScratchKind::TilesOnly);
    if (KeepsWork())
        keeper_.Use(scratch_);
    return scratch_;
}

std::shared_ptr<AtlavexMap> LibraryObject::AddMapFromImageFile(const std::string& file,
                                                               const std::string& name,
                                                               std::int32_t tileWidth,
                                                               std::int32_t tileHeight) {
    return TellingLackOfMemory([&] { return ImportMap(file, name, tileWidth, tileHeight); });
}

std::shared_ptr<AtlavexMap> LibraryObject::ImportMap(const std::string& file, const std::string& name,
                                                     std::int32_t tileWidth, std::int32_t tileHeight) {
    const std::unique_ptr<RowReader> reader = OpenImage(file, options_.scratchFolder);
    const ImageInfo& info = reader->Info();
    const PyramidLayout layout(info.width, info.height, tileWidth, tileHeight);
    auto map = std::make_shared<MapState>();
    map->record.name = name;
    map->record.format = info.format;
    map->record.width = info.width;
    map->record.height = info.height;
    map->record.tileWidth = tileWidth;
    map->record.tileHeight = tileHeight;
    map->record.palette = info.palette;
    map->turn = info.orientation;
    const Addition addition(*this);
    std::optional<Savepoint> savepoint; // kept when the events are over, too: their handlers may throw
    operations_->Run([&](Progress& progress) {
        progress.Expect(std::int64_t{info.width} * info.height);
        map->container = ContainerForNew();
        savepoint.emplace(map->container->GetDatabase());
        TileWriter writer(*map->container, numbers_, layout);
        BuildPyramid(*reader, layout, writer, progress, options_.threads);
        map->record.pages = writer.Finish();
    });
    savepoint->Keep();
    map->id = numbers_.Allocate();
    auto added = Append(std::move(map));
    KeepQuietly(state_);
    RaiseRemarks(reader->Remarks());
    return added;
}

std::shared_ptr<AtlavexIcon> LibraryObject::AddIconFromImageFile(const std::string& file,
                                                                 const std::string& name) {
    return TellingLackOfMemory([&] { return ImportIcon(file, name); });
}

std::shared_ptr<AtlavexIcon> LibraryObject::ImportIcon(const std::string& file, const std::string& name) {
    const std::unique_ptr<RowReader> image = OpenIconImage(file, options_.scratchFolder);
    auto icon = std::make_shared<IconState>();
    const Addition addition(*this);
    std::optional<Savepoint> savepoint; // as for a map
    operations_->Run([&](Progress& progress) {
        progress.Expect(ImportIconWork(image->Info()));
        icon->container = ContainerForNew();
        savepoint.emplace(icon->container->GetDatabase());
        icon->record = ::ImportIcon(*image, name, *icon->container, numbers_, progress);
    });
    savepoint->Keep();
    icon->id = numbers_.Allocate();
    auto added = Append(std::move(icon));
    KeepQuietly(state_);
    RaiseRemarks(image->Remarks());
    return added;
}

void LibraryObject::RaiseRemarks(const std::vector<std::string>& remarks) const {
    if (OnImageRemark)
        std::ranges::for_each(remarks, OnImageRemark);
}

void LibraryObject::RemoveMap(const std::string& reference) {
    const auto found = FindId(state_.maps, IdOf(MapMark, reference));
    if (found == state_.maps.end())
        NoSuchMap();
    std::shared_ptr<MapState> map = *found;
    // First the records, then the tiles: after a kill between the two, nothing names what is gone.
    const bool mayGo = KeepQuietly(Without(map->id));
    if (mayGo && IsUnsaved(map->container, {BlobKind::MapRecord, map->id}) &&
        !IsAloneInScratch(map->container)) {
        Savepoint savepoint(map->container->GetDatabase());
        RemoveTiles(map->container, map->record);
        savepoint.Keep();
    }
    Forget(mapObjects_, map->id);
    state_.maps.erase(found);
    LeaveSpace(std::move(map));
}

void LibraryObject::RemoveIcon(const std::string& reference) {
    const auto found = FindId(state_.icons, IdOf(IconMark, reference));
    if (found == state_.icons.end())
        NoSuchIcon();
    std::shared_ptr<IconState> icon = *found;
    const bool mayGo = KeepQuietly(Without(icon->id)); // as for a map
    if (mayGo && IsUnsaved(icon->container, {BlobKind::IconRecord, icon->id}) &&
        !IsAloneInScratch(icon->container))
        icon->container->Remove(BlobKind::IconPicture, icon->record.picture.number);
    Forget(iconObjects_, icon->id);
    state_.icons.erase(found);
    LeaveSpace(std::move(icon));
}

bool LibraryObject::IsUnsaved(const std::shared_ptr<Container>& container, const RecordKey& key) const {
    return !IsFile(container) || IsUnsavedInFile(container, key);
}

bool LibraryObject::IsFile(const std::shared_ptr<Container>& container) const {
    return file_ && container == file_->Tiles();
}

std::ptrdiff_t LibraryObject::ObjectsIn(const std::shared_ptr<Container>& container) const {
    const auto liesThere = [&container](const auto& object) { return object->container == container; };
    return std::count_if(state_.maps.begin(), state_.maps.end(), liesThere) +
           std::count_if(state_.icons.begin(), state_.icons.end(), liesThere);
}

bool LibraryObject::IsAloneInScratch(const std::shared_ptr<Container>& container) const {
    return !IsFile(container) && ObjectsIn(container) == 1;
}

template <typename Object>
void LibraryObject::LeaveSpace(std::shared_ptr<Object> removed) noexcept {
    if (!IsFile(removed->container) && ObjectsIn(removed->container) > 0)
        removed->container->GiveBackSpace();
    removed.reset(); // it holds the scratch
    LeaveScratch();
}

void LibraryObject::LeaveScratch() noexcept {
    try {
        if (scratch_ && ObjectsIn(scratch_) == 0 && !keeper_.Holds())
            disposal_.Dispose(std::move(scratch_));
    } catch (const std::exception&) {
        scratch_.reset(); // no memory for a thread: here and now
    }
}

bool LibraryObject::IsUnsavedInFile(const std::shared_ptr<Container>& container, const RecordKey& key) const {
    return IsFile(container) && !file_->Records().contains(key);
}

void LibraryObject::GiveUpDirectWork() {
    direct_.reset();
    std::erase_if(state_.maps, [this](const std::shared_ptr<MapState>& map) {
        const bool gone = IsUnsavedInFile(map->container, {BlobKind::MapRecord, map->id});
        if (gone)
            Forget(mapObjects_, map->id);
        return gone;
    });
    std::erase_if(state_.icons, [this](const std::shared_ptr<IconState>& icon) {
        const bool gone = IsUnsavedInFile(icon->container, {BlobKind::IconRecord, icon->id});
        if (gone)
            Forget(iconObjects_, icon->id);
        return gone;
    });
}

void LibraryObject::FollowTiles() {
    auto former = std::make_shared<std::vector<std::shared_ptr<Container>>>();
    for (const auto& [id, object] : mapObjects_)
        if (std::shared_ptr<Container> left = object->FollowTiles())
            former->push_back(std::move(left));
    // The last to hold a file that has no name any more takes as long as the system to free it.
    if (!former->empty())
        disposal_.Dispose(std::move(former));
}

void LibraryObject::Replace(LibraryState state) {
    for (const auto& [id, object] : mapObjects_)
        object->Detach();
    for (const auto& [id, object] : iconObjects_)
        object->Detach();
    mapObjects_.clear();
    iconObjects_.clear();
    state_ = std::move(state);
}

/// What another program replaced while the file was read looks like damage from here.
void LibraryObject::RequireUnchangedFile() const {
    if (file_ && !file_->IsUnchanged())
        throw ComponentError(ErrorNumber::FileChanged,
                             "The file '" + file_->Path().string() +
                                 "' was changed by another program while it was read.");
}

std::vector<Damage> LibraryObject::Verify() {
    std::vector<Damage> damages;
    const auto report = [&](const std::string& object, const std::string& reason) {
        damages.push_back({object, reason});
    };
    try {
        operations_->Run([&](Progress& progress) {
            progress.Expect(VerifyWork(state_));
            VerifyTiles(state_, Depth::Decoded, progress, report, options_.threads);
            if (file_ && !direct_)
                VerifyStructure(*file_, file_->ReadState(), report);
        });
    } catch (const ComponentError& error) {
        if (error.Number() == ErrorNumber::FileDamaged)
            RequireUnchangedFile();
        throw;
    }
    if (!damages.empty())
        RequireUnchangedFile();
    return damages;
}

std::unique_ptr<AtlavexLibrary> CreateAtlavexLibrary(const LibraryOptions& options) {
    return std::make_unique<LibraryObject>(options);
}
