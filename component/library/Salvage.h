#pragma once

#include "base/Progress.h"
#include "component/AtlavexLibrary.h"
#include "component/storage/DamagedFile.h"

/// Copies what is sound of a damaged library into a container, under fresh numbers.
///
/// A map keeps every sound tile. Pixels of a damaged tile of the map itself are white, or transparent where
/// the map has transparency: they are not made up from the overviews. A damaged overview is built anew from
/// the level below it. An icon with a damaged picture keeps its texts and becomes transparent. Each of these
/// is named.
class Salvage {
public:
    Salvage(const DamagedFile& from, std::shared_ptr<Container> to, NumberSource& numbers,
            Progress& progress);

    /// Gives the maps and icons, in their order.
    LibraryState Copy();
    SalvageReport Report() { return std::move(report_); }

private:
    class MapCopy;
    void CopyMap(std::int64_t id, const MapRecord& record, LibraryState& state);
    void CopyIcon(std::int64_t id, const IconRecord& record, LibraryState& state);
    MetadataList MetadataOf(std::int64_t id, const std::string& object);
    void NameWhatIsLost();
    void Damaged(std::string object, std::string reason);

    const DamagedFile& from_;
    std::shared_ptr<Container> to_;
    NumberSource& numbers_;
    Progress& progress_;
    SalvageReport report_;
};
