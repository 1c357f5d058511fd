#include "component/storage/Verification.h"

#include "base/Threads.h"
#include "component/storage/Belonging.h"
#include "component/storage/TileForm.h"

#include <algorithm>
#include <deque>
#include <optional>
#include <unordered_set>
#include <utility>

namespace {

/// What a damaged thing throws, told instead; errors of the disk or a cancel pass through.
template <typename Check>
bool Tell(const DamageReport& report, const std::string& object, const Check& check) {
    try {
        check();
        return true;
    } catch (const ComponentError& error) {
        if (error.Number() != ErrorNumber::FileDamaged)
            throw;
        report(object, error.Description());
        return false;
    }
}

/// What is wrong with a picture that was stored so, in a sentence with its place.
template <typename Check>
void TellOfPicture(const DamageReport& report, const Database& file, const std::string& place,
                   const Check& check) {
    try {
        check();
    } catch (const ComponentError& error) {
        if (error.Number() != ErrorNumber::FileDamaged)
            throw;
        report(place,
               "The file '" + file.ShownName() + "' is damaged: " + place + ": " + error.Description());
    }
}

/// What is wrong with one tile, or with the page that should name it.
struct Finding {
    std::string object;
    std::string reason;
};

/// Reads a map's tiles on several threads, so many entries at a time.
class MapCheck {
public:
    static constexpr std::int64_t EntriesAtOnce = 256;

    MapCheck(const MapState& map, Depth depth, int threads)
        : map_(map), depth_(depth), threads_(ThreadCount(threads)),
          reader_(map.container, map.record.Layout(), map.record.pages, map.Name()) {
        for (int thread = 0; thread < threads_; ++thread)
            forms_.emplace_back(map.record);
    }

    /// Reports in the order of the entries, whichever thread has found it first.
    void Check(std::int64_t first, std::int64_t count, Progress& progress, const DamageReport& report) {
        findings_.assign(static_cast<std::size_t>(count), std::nullopt);
        const std::vector<std::size_t> unseen = Unseen(first, progress);
        ForEachOnThreads(unseen.size(), threads_, [&](int thread, std::size_t item) {
            progress.ThrowIfCancelled();
            CheckTile(first + static_cast<std::int64_t>(unseen[item]), findings_[unseen[item]],
                      forms_[static_cast<std::size_t>(thread)]);
            progress.Add(1);
        });
        for (const std::optional<Finding>& finding : findings_)
            if (finding)
                report(finding->object, finding->reason);
    }

private:
    /// Which of the entries name a blob that has not been looked at. The others are done.
    std::vector<std::size_t> Unseen(std::int64_t first, Progress& progress) {
        std::vector<std::size_t> unseen;
        for (std::size_t i = 0; i < findings_.size(); ++i) {
            progress.ThrowIfCancelled();
            if (IsUnseen(first + static_cast<std::int64_t>(i), findings_[i]))
                unseen.push_back(i);
            else
                progress.Add(1);
        }
        return unseen;
    }

    bool IsUnseen(std::int64_t entry, std::optional<Finding>& finding) {
        const std::int64_t page = entry / EntriesPerPage;
        if (page == damagedPage_)
            return false;
        BlobRef ref;
        if (Tell(Into(finding), "Map '" + map_.Name() + "'", [&] { ref = reader_.Entry(entry); }))
            return seen_.insert(ref.number).second;
        damagedPage_ = page; // told once, not for each of its tiles
        return false;
    }

    void CheckTile(std::int64_t entry, std::optional<Finding>& finding, TileForm& form) {
        const std::string place = reader_.Place(entry);
        Bytes png;
        if (Tell(Into(finding), place, [&] { png = reader_.ReadEntry(entry); }) && depth_ == Depth::Decoded)
            TellOfPicture(Into(finding), map_.container->GetDatabase(), place,
                          [&] { form.Check(png, entry); });
    }

    static DamageReport Into(std::optional<Finding>& finding) {
        return [&finding](const std::string& object, const std::string& reason) {
            finding = Finding{object, reason};
        };
    }

    const MapState& map_;
    Depth depth_;
    int threads_;
    TileReader reader_;
    std::deque<TileForm> forms_; ///< one a thread
    std::unordered_set<std::int64_t> seen_;
    std::int64_t damagedPage_ = -1;
    std::vector<std::optional<Finding>> findings_; ///< of the entries that are looked at
};

void VerifyMap(const MapState& map, Depth depth, int threads, Progress& progress,
               const DamageReport& report) {
    MapCheck check(map, depth, threads);
    const std::int64_t entries = map.record.Layout().Entries();
    for (std::int64_t first = 0; first < entries; first += MapCheck::EntriesAtOnce)
        check.Check(first, std::min(MapCheck::EntriesAtOnce, entries - first), progress, report);
}

void VerifyIcon(const IconState& icon, Depth depth, const DamageReport& report) {
    const BlobRef& picture = icon.record.picture;
    const std::string place = "Icon '" + icon.Name() + "'";
    const std::optional<Bytes> stored = icon.container->GetStored(BlobKind::IconPicture, picture.number);
    Bytes png;
    if (!stored || stored->size() != picture.length ||
        !icon.container->GetEnvelope().Open(BlobKind::IconPicture, picture.number, *stored, picture.digest,
                                            png)) {
        report(place, "The picture of icon '" + icon.Name() + "' is missing or does not match its digest.");
        return;
    }
    if (depth == Depth::Decoded)
        TellOfPicture(report, icon.container->GetDatabase(), place, [&] {
            TileDecoder decoder;
            std::vector<std::uint8_t> pixels;
            DecodeWhole(decoder, png, icon.record.width, icon.record.height, pixels);
        });
}

void ReportStrays(Database& database, const char* sql, const std::function<bool(std::int64_t)>& belongs,
                  const std::string& what, const DamageReport& report) {
    std::int64_t strays = 0;
    Statement rows(database, sql);
    while (rows.Step())
        strays += belongs(rows.Integer(0)) ? 0 : 1;
    if (strays > 0)
        report("File", "The file '" + database.ShownName() + "' holds " + std::to_string(strays) + " " +
                           what + " that belong to no map or icon.");
}

/// One metadata record for each map and icon, and none for anything else.
void ReportRecords(const LibraryFile& file, const DamageReport& report) {
    const RecordTable& records = file.Records();
    std::int64_t strays = 0;
    for (const auto& [key, digests] : records) {
        const std::int64_t number = key.second;
        const bool isMap = records.contains({BlobKind::MapRecord, number});
        const bool isIcon = records.contains({BlobKind::IconRecord, number});
        strays += key.first == BlobKind::MetadataRecord && !isMap && !isIcon ? 1 : 0;
        if (key.first == BlobKind::IconRecord && isMap)
            report("File", "The file '" + file.GetDatabase().ShownName() +
                               "' has a map and an icon of number " + std::to_string(number) + ".");
    }
    if (strays > 0)
        report("File", "The file '" + file.GetDatabase().ShownName() + "' holds " + std::to_string(strays) +
                           " metadata records that belong to no map or icon.");
}

void ReportBelonging(LibraryFile& file, const LibraryState& state, const DamageReport& report) {
    const std::string start = "The file '" + file.GetDatabase().ShownName() + "' is damaged: ";
    Belonging belonging([&](const std::string& owner, const std::string& other, std::int64_t count) {
        report("File", start + owner + " names " + std::to_string(count) +
                           " pictures or directory pages that belong to " + other + ".");
    });
    for (const auto& icon : state.icons)
        belonging.Add(*icon);
    for (const auto& map : state.maps)
        belonging.Add(*map);
    if (belonging.Largest() >= file.Header().nextNumber)
        report("File", start + "a map or icon uses a number that its header calls unused.");
    ReportStrays(
        file.GetDatabase(), "SELECT id FROM blob",
        [&](std::int64_t number) { return belonging.HasBlob(number); }, "pictures", report);
    ReportStrays(
        file.GetDatabase(), "SELECT id FROM tile_index",
        [&](std::int64_t number) { return belonging.HasPage(number); }, "directory pages", report);
}

} // namespace

std::int64_t VerifyWork(const LibraryState& state) {
    std::int64_t work = 0;
    for (const auto& map : state.maps)
        work += map->record.Layout().Entries();
    return work;
}

void VerifyTiles(const LibraryState& state, Depth depth, Progress& progress, const DamageReport& report,
                 int threads) {
    for (const auto& map : state.maps)
        VerifyMap(*map, depth, threads, progress, report);
    for (const auto& icon : state.icons) {
        progress.ThrowIfCancelled();
        VerifyIcon(*icon, depth, report);
    }
}

std::vector<std::string> ObjectsWithoutPixels(const LibraryState& state, const Container& container,
                                              Progress& progress) {
    std::vector<std::string> objects;
    bool whole = true;
    const auto notice = [&whole](const std::string&, const std::string&) { whole = false; };
    const auto note = [&](const std::string& object) {
        if (!std::exchange(whole, true))
            objects.push_back(object);
    };
    for (const auto& map : state.maps) {
        if (map->container.get() == &container)
            VerifyMap(*map, Depth::Stored, 1, progress, notice);
        note("map '" + map->Name() + "'");
    }
    for (const auto& icon : state.icons) {
        progress.ThrowIfCancelled();
        if (icon->container.get() == &container)
            VerifyIcon(*icon, Depth::Stored, notice);
        note("icon '" + icon->Name() + "'");
    }
    return objects;
}

void VerifyStructure(LibraryFile& file, const LibraryState& state, const DamageReport& report) {
    Tell(report, "File", [&] {
        Statement check(file.GetDatabase(), "PRAGMA quick_check(20)");
        int findings = 0;
        while (check.Step())
            findings += check.Text(0) == "ok" ? 0 : 1;
        if (findings > 0)
            report("File", "The file '" + file.GetDatabase().ShownName() +
                               "' is damaged: its structure is broken in " + std::to_string(findings) +
                               (findings == 1 ? " place." : " places."));
    });
    Tell(report, "File", [&] {
        ReportRecords(file, report);
        ReportBelonging(file, state, report);
    });
}
