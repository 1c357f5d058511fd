#include "component/storage/Verification.h"

#include "component/storage/TileDirectory.h"

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

TileReader ReaderOf(const MapState& map) {
    return {map.container, map.record.Layout(), map.record.pages, map.Name()};
}

void VerifyMap(const MapState& map, Progress& progress, const DamageReport& report) {
    TileReader reader = ReaderOf(map);
    const std::int64_t entries = map.record.Layout().Entries();
    std::unordered_set<std::int64_t> seen;
    std::int64_t damagedPage = -1;
    for (std::int64_t entry = 0; entry < entries; ++entry) {
        progress.ThrowIfCancelled();
        progress.Add(1);
        const std::int64_t page = entry / EntriesPerPage;
        if (page == damagedPage)
            continue;
        BlobRef ref;
        if (!Tell(report, "Map '" + map.Name() + "'", [&] { ref = reader.Entry(entry); })) {
            damagedPage = page; // told once, not for each of its tiles
            continue;
        }
        if (seen.insert(ref.number).second)
            Tell(report, reader.Place(entry), [&] { reader.ReadEntry(entry); });
    }
}

void VerifyIcon(const IconState& icon, const DamageReport& report) {
    const BlobRef& picture = icon.record.picture;
    Bytes plain;
    if (!icon.container->Get(BlobKind::IconPicture, picture.number, picture.digest, plain))
        report("Icon '" + icon.Name() + "'",
               "The picture of icon '" + icon.Name() + "' is missing or does not match its digest.");
}

/// Numbers of all blobs and pages that belong to something.
struct Belonging {
    std::unordered_set<std::int64_t> blobs;
    std::unordered_set<std::int64_t> pages;
};

Belonging CollectBelonging(const LibraryState& state) {
    Belonging belonging;
    for (const auto& icon : state.icons)
        belonging.blobs.insert(icon->record.picture.number);
    for (const auto& map : state.maps) {
        for (const PageRef& page : map->record.pages)
            belonging.pages.insert(page.number);
        TileReader reader = ReaderOf(*map);
        for (std::int64_t entry = 0; entry < map->record.Layout().Entries(); ++entry)
            belonging.blobs.insert(reader.Entry(entry).number);
    }
    return belonging;
}

void ReportStrays(Database& database, const char* sql, const std::unordered_set<std::int64_t>& belonging,
                  const std::string& what, const DamageReport& report) {
    std::int64_t strays = 0;
    Statement rows(database, sql);
    while (rows.Step())
        strays += belonging.contains(rows.Integer(0)) ? 0 : 1;
    if (strays > 0)
        report("File", "The file '" + database.ShownName() + "' holds " + std::to_string(strays) + " " +
                           what + " that belong to no map or icon.");
}

} // namespace

std::int64_t VerifyWork(const LibraryState& state) {
    std::int64_t work = 0;
    for (const auto& map : state.maps)
        work += map->record.Layout().Entries();
    return work;
}

void VerifyTiles(const LibraryState& state, Progress& progress, const DamageReport& report) {
    for (const auto& map : state.maps)
        VerifyMap(*map, progress, report);
    for (const auto& icon : state.icons) {
        progress.ThrowIfCancelled();
        VerifyIcon(*icon, report);
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
            VerifyMap(*map, progress, notice);
        note("map '" + map->Name() + "'");
    }
    for (const auto& icon : state.icons) {
        progress.ThrowIfCancelled();
        if (icon->container.get() == &container)
            VerifyIcon(*icon, notice);
        note("icon '" + icon->Name() + "'");
    }
    return objects;
}

void VerifyStructure(LibraryFile& file, const LibraryState& state, const DamageReport& report) {
    Tell(report, "File", [&] {
        Statement check(file.File(), "PRAGMA quick_check(20)");
        while (check.Step())
            if (const std::string finding = check.Text(0); finding != "ok")
                report("File", "The file '" + file.File().ShownName() + "' is damaged: " + finding + ".");
    });
    Tell(report, "File", [&] {
        const Belonging belonging = CollectBelonging(state);
        ReportStrays(file.File(), "SELECT id FROM blob", belonging.blobs, "pictures", report);
        ReportStrays(file.File(), "SELECT id FROM tile_index", belonging.pages, "directory pages", report);
    });
}
