#include "cli/commands/CompletionTexts.h"

#include "catalogue/modCountryData.h"
#include "catalogue/modCountryGadgets.h"
#include "catalogue/modGadgets.h"
#include "cli/commands/Selection.h"
#include "cli/output/ExitStatus.h"

#include <unistd.h>

#include <filesystem>
#include <set>
#include <string_view>

namespace {

constexpr int LastTypedZone = 60;

/// What any country offers of a kind, each once.
OfferedWords AllOf(std::span<const std::string_view> CountryRow::*offered) {
    std::set<std::string_view> texts;
    for (const CountryRow& country : CountryTable())
        texts.insert((country.*offered).begin(), (country.*offered).end());
    OfferedWords words;
    for (const std::string_view text : texts)
        words.push_back({std::string(text), ""});
    return words;
}

/// The library of a file, if it can be read at once and without a key. A journal beside it says that somebody
/// writes to it, or that reading would have to mend it first.
std::unique_ptr<AtlavexLibrary> Glance(const std::string& file) {
    try {
        if (!std::filesystem::is_regular_file(file) || std::filesystem::exists(file + "-journal"))
            return nullptr;
        auto library = CreateAtlavexLibrary();
        if (library->IsEncrypted(file))
            return nullptr;
        library->LoadFromFile(file, "");
        return library;
    } catch (const std::exception&) {
        return nullptr; // it will be told when the command runs
    }
}

OfferedWords ObjectsToOffer(const std::string& file, ObjectKind kind) {
    const auto library = Glance(file);
    OfferedWords words;
    for (const auto& [text, meaning] : library ? SelectorsOf(*library, kind) : std::vector<Selector>())
        words.push_back({text, meaning});
    return words;
}

} // namespace

OfferedWords GridsToOffer() {
    return AllOf(&CountryRow::grids);
}

OfferedWords DatumsToOffer() {
    return AllOf(&CountryRow::datums);
}

OfferedWords UnitsToOffer() {
    OfferedWords words;
    for (const std::string_view unit : Units)
        words.push_back({std::string(unit), ""});
    return words;
}

OfferedWords ZonesToOffer(const std::string& grid) {
    OfferedWords words;
    if (GridHasNumericZone(grid))
        for (int zone = 1; zone <= LastTypedZone; ++zone)
            words.push_back({std::to_string(zone), ""});
    for (const std::string& zone : ZonesOf(grid))
        words.push_back({zone, ""});
    return words;
}

OfferedWords VariablesToOffer() {
    OfferedWords words;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
        const std::string_view text = *entry;
        words.push_back({std::string(text.substr(0, text.find('='))), ""});
    }
    return words;
}

OfferedWords MapsToOffer(const std::string& file) {
    return ObjectsToOffer(file, ObjectKind::Map);
}

OfferedWords IconsToOffer(const std::string& file) {
    return ObjectsToOffer(file, ObjectKind::Icon);
}

OfferedWords KeysToOffer(const std::string& file, const std::string& kind, const std::string& which) {
    const auto library = Glance(file);
    if (!library)
        return {};
    try {
        OfferedWords words;
        const auto texts = SelectMetadata(*library, ParseObjectKind(kind), which);
        for (std::int32_t position = 1; position <= texts->MetadataCount(); ++position)
            words.push_back({texts->MetadataKeyAt(position), texts->MetadataValueAt(position)});
        return words;
    } catch (const CommandFailure&) {
        return {};
    }
}
