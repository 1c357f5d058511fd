#include "component/storage/Verification.h"

#include "component/storage/Belonging.h"
#include "component/storage/TileForm.h"

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

/// Reads a map's tiles one after the other.
class MapCheck {
public:
    MapCheck(const MapState& map, Depth depth, const DamageReport& report)
        : map_(map), depth_(depth), report_(report),
          reader_(map.container, map.record.Layout(), map.record.pages, map.Name()), form_(map.record) {}

    void CheckEntry(std::int64_t entry) {
        const std::int64_t page = entry / EntriesPerPage;
        if (page == damagedPage_)
            return;
        BlobRef ref;
        if (!Tell(report_, "Map '" + map_.Name() + "'", [&] { ref = reader_.Entry(entry); }))
            damagedPage_ = page; // told once, not for each of its tiles
        else if (seen_.insert(ref.number).second)
            CheckTile(entry);
    }

private:
    void CheckTile(std::int64_t entry) {
        const std::string place = reader_.Place(entry);
        Bytes png;
        if (Tell(report_, place, [&] { png = reader_.ReadEntry(entry); }) && depth_ == Depth::Decoded)
            TellOfPicture(report_, map_.container->GetDatabase(), place, [&] { form_.Check(png, entry); });
    }

    const MapState& map_;
    Depth depth_;
    const DamageReport& report_;
    TileReader reader_;
    TileForm form_;
    std::unordered_set<std::int64_t> seen_;
    std::int64_t damagedPage_ = -1;
};

void VerifyMap(const MapState& map, Depth depth, Progress& progress, const DamageReport& report) {
    MapCheck check(map, depth, report);
    for (std::int64_t entry = 0; entry < map.record.Layout().Entries(); ++entry) {
        progress.ThrowIfCancelled();
        progress.Add(1);
        check.CheckEntry(entry);
    }
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

void VerifyTiles(const LibraryState& state, Depth depth, Progress& progress, const DamageReport& report) {
    for (const auto& map : state.maps)
        VerifyMap(*map, depth, progress, report);
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
            VerifyMap(*map, Depth::Stored, progress, notice);
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
