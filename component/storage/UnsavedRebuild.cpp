#include "component/storage/UnsavedRebuild.h"

#include "base/Paths.h"

#include <algorithm>
#include <set>

namespace {

/// Puts a library together from what was kept of it and from its file.
class Rebuild {
public:
    Rebuild(const std::filesystem::path& scratch, const std::string& key) {
        OpenScratches(scratch);
        work_.envelope = EnvelopeUnder(key);
        if (!work_.envelope)
            return;
        for (LeftScratch& left : scratches_)
            containers_.push_back(left.Open(work_.envelope));
        unsaved_ = ReadUnsavedState(*containers_.front(), Leader().Summary());
    }

    RebuiltWork With(const std::string& base) {
        if (!work_.envelope)
            return std::move(work_);
        OpenFile(base.empty() ? Leader().Summary().library : base);
        work_.nextNumber = std::max(unsaved_.nextNumber, work_.file ? work_.file->Header().nextNumber : 1);
        for (const UnsavedState::Object& object : unsaved_.objects)
            if (!AddObject(object))
                work_.missing.push_back((object.key.first == BlobKind::MapRecord ? "map '" : "icon '") +
                                        object.name + "'");
        AddStrangers();
        Number(renumberedMaps_, work_.state.maps);
        Number(renumberedIcons_, work_.state.icons);
        return std::move(work_);
    }

private:
    const LeftScratch& Leader() const { return scratches_.front(); }

    /// The one that was written last comes first.
    void OpenScratches(const std::filesystem::path& scratch) {
        scratches_.emplace_back(scratch);
        const std::vector<std::string> names = Leader().Summary().scratches;
        const auto session = Leader().Summary().session;
        for (const std::string& name : names)
            if (RealPath(name) != RealPath(scratch))
                OpenCompanion(name, session);
        std::ranges::stable_sort(scratches_, std::ranges::greater(),
                                 [](const LeftScratch& left) { return left.Summary().revision; });
    }

    void OpenCompanion(const std::string& name, const std::array<std::uint8_t, 16>& session) {
        try {
            LeftScratch companion{name};
            if (companion.Summary().session == session)
                scratches_.push_back(std::move(companion));
        } catch (const ComponentError& error) {
            work_.notes.push_back("A part of the work lay in '" + name + "'. " + error.Description());
        }
    }

    std::shared_ptr<const Envelope> EnvelopeUnder(const std::string& key) const {
        try {
            return Envelope::Of(Leader().Header(), Leader().Base().header, Leader().Base().mac, key);
        } catch (const MalformedRecord& malformed) {
            throw ComponentError(ErrorNumber::FileDamaged,
                                 std::string("The unsaved work is damaged: ") + malformed.what() + ".");
        }
    }

    void OpenFile(const std::string& name) {
        if (name.empty())
            return;
        try {
            const std::filesystem::path path = RealPath(name);
            if (FileHeader::Decode(LibraryFile::RowOf(path).header).id != Leader().Header().id) {
                work_.notes.push_back("The file '" + name +
                                      "' is not the library that the work belongs to, or has "
                                      "another key since.");
                return;
            }
            work_.file = LibraryFile::Open(path, work_.envelope, name);
            file_ = work_.file->ReadState();
            if (work_.file->Header().generation != Leader().Header().generation)
                work_.notes.push_back("The file '" + name +
                                      "' was saved since the work was begun; what is new in it "
                                      "stays.");
        } catch (const ComponentError& error) {
            work_.notes.push_back(error.Description());
        } catch (const MalformedRecord& malformed) {
            work_.notes.push_back("The file '" + name + "' is damaged: " + malformed.what() + ".");
        }
    }

    bool AddObject(const UnsavedState::Object& object) {
        return object.key.first == BlobKind::MapRecord
                   ? AddObject(object.key, file_.maps, work_.state.maps, renumberedMaps_)
                   : AddObject(object.key, file_.icons, work_.state.icons, renumberedIcons_);
    }

    Bytes Kept(const RecordKey& key) { return ReadUnsavedRecord(*containers_.front(), unsaved_, key); }

    template <typename State>
    void TakeMetadata(State& state, const std::shared_ptr<State>& former) {
        const RecordKey key{BlobKind::MetadataRecord, state.id};
        if (unsaved_.records.contains(key))
            state.metadata =
                ReadingFrom(containers_.front()->GetDatabase(), [&] { return DecodeMetadata(Kept(key)); });
        else if (former)
            state.metadata = former->metadata;
    }

    template <typename State>
    static std::shared_ptr<State> InFile(const std::vector<std::shared_ptr<State>>& objects,
                                         std::int64_t id) {
        const auto found = std::ranges::find(objects, id, [](const auto& object) { return object->id; });
        return found != objects.end() ? *found : nullptr;
    }

    /// The scratch that holds a blob; nothing when none does.
    std::shared_ptr<Container> Holder(BlobKind kind, std::int64_t number) {
        const auto holder = std::ranges::find_if(containers_, [&](const auto& container) {
            return container->GetStored(kind, number).has_value();
        });
        return holder != containers_.end() ? *holder : nullptr;
    }

    // Where the pixels of an object lie: its tile directory or its picture.
    static auto& PixelsOf(MapRecord& record) { return record.pages; }
    static auto& PixelsOf(IconRecord& record) { return record.picture; }
    std::shared_ptr<Container> HolderOf(const MapRecord& record) {
        return Holder(BlobKind::DirectoryPage, record.pages.front().number);
    }
    std::shared_ptr<Container> HolderOf(const IconRecord& record) {
        return Holder(BlobKind::IconPicture, record.picture.number);
    }

    /// Puts an object of the work into its list; false when its record or its pixels are nowhere.
    template <typename State>
    bool AddObject(const RecordKey& key, const std::vector<std::shared_ptr<State>>& inFile,
                   std::vector<std::shared_ptr<State>>& list,
                   std::vector<std::shared_ptr<State>>& renumbered) {
        const auto former = InFile(inFile, key.second);
        auto object = former ? std::make_shared<State>(*former)
                             : std::make_shared<State>(State{key.second, {}, {}, {}});
        if (unsaved_.records.contains(key)) {
            using Record = decltype(object->record);
            object->record =
                ReadingFrom(containers_.front()->GetDatabase(), [&] { return Record::Decode(Kept(key)); });
            const bool isSaved = former && PixelsOf(former->record) == PixelsOf(object->record);
            const auto holder = isSaved ? nullptr : HolderOf(object->record);
            if (!PlaceObject(object, former, holder))
                return false;
            if (!holder)
                PixelsOf(object->record) = PixelsOf(former->record);
        } else if (!former) {
            return false;
        }
        TakeMetadata(*object, former);
        Add(object, former, list, renumbered);
        return true;
    }

    /// Where its pixels lie: in a scratch, else in the file, where they must have the same form.
    template <typename State>
    static bool PlaceObject(const std::shared_ptr<State>& state, const std::shared_ptr<State>& former,
                            const std::shared_ptr<Container>& holder) {
        if (!holder && (!former || former->record.width != state->record.width ||
                        former->record.height != state->record.height))
            return false;
        state->container = holder ? holder : former->container;
        return true;
    }

    /// An object of the scratch whose number another program has given to one of its own gets a new one.
    template <typename State>
    void Add(const std::shared_ptr<State>& state, const std::shared_ptr<State>& former,
             std::vector<std::shared_ptr<State>>& list, std::vector<std::shared_ptr<State>>& renumbered) {
        const bool isFiles = former && state->container == former->container;
        if (isFiles)
            taken_.insert(state->id);
        if (isFiles || !IsNumberOfFile(state->id))
            list.push_back(state);
        else
            renumbered.push_back(state);
    }

    bool IsNumberOfFile(std::int64_t id) const { return InFile(file_.maps, id) || InFile(file_.icons, id); }

    /// What the file has and the work never knew, because it was added since.
    void AddStrangers() {
        const auto isNew = [&](BlobKind kind, std::int64_t id) {
            return !taken_.contains(id) &&
                   std::ranges::find(unsaved_.removed, RecordKey{kind, id}) == unsaved_.removed.end();
        };
        for (const auto& map : file_.maps)
            if (isNew(BlobKind::MapRecord, map->id))
                work_.state.maps.push_back(map);
        for (const auto& icon : file_.icons)
            if (isNew(BlobKind::IconRecord, icon->id))
                work_.state.icons.push_back(icon);
    }

    template <typename State>
    void Number(std::vector<std::shared_ptr<State>>& renumbered, std::vector<std::shared_ptr<State>>& list) {
        std::ranges::sort(list, {}, [](const auto& object) { return object->id; });
        for (const auto& object : renumbered) {
            object->id = work_.nextNumber++;
            list.push_back(object);
        }
    }

    std::vector<LeftScratch> scratches_;
    std::vector<std::shared_ptr<Container>> containers_; ///< in the order of the scratches
    UnsavedState unsaved_;
    LibraryState file_;
    RebuiltWork work_;
    std::set<std::int64_t> taken_; ///< numbers of the file's objects that were in the work
    std::vector<std::shared_ptr<MapState>> renumberedMaps_;
    std::vector<std::shared_ptr<IconState>> renumberedIcons_;
};

} // namespace

RebuiltWork RebuildUnsavedWork(const std::filesystem::path& scratch, const std::string& key,
                               const std::string& base) {
    return Rebuild(scratch, key).With(base);
}
