#pragma once

#include "base/ComponentError.h"
#include "component/AtlavexLibrary.h"
#include "tests/component/Sheet.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

/// All that a map gives back, to be compared with what went in.
struct MapContent {
    std::string identifier;
    std::string name;
    Sheet sheet;
    std::int32_t tileWidth = 0;
    std::int32_t tileHeight = 0;
    double zoom = 1.0;
    Georeference georeference;
    std::vector<std::pair<std::string, std::string>> metadata; ///< in the object's order

    bool operator==(const MapContent&) const = default;
};

/// All that an icon gives back.
struct IconContent {
    std::string name;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::vector<std::uint8_t> rgba;
    std::int32_t offsetX = 0;
    std::int32_t offsetY = 0;
    std::vector<std::pair<std::string, std::string>> metadata;

    bool operator==(const IconContent&) const = default;
};

struct LibraryContent {
    std::vector<MapContent> maps;
    std::vector<IconContent> icons;

    bool operator==(const LibraryContent&) const = default;
};

// Short texts for failures: the pixels alone would fill the screen.
void PrintTo(const Sheet& sheet, std::ostream* out);
void PrintTo(const MapContent& map, std::ostream* out);
void PrintTo(const IconContent& icon, std::ostream* out);
void PrintTo(const LibraryContent& library, std::ostream* out);

std::vector<std::pair<std::string, std::string>> MetadataOf(const Metadata& object);
Sheet SheetOf(AtlavexMap& map);
MapContent ContentOf(AtlavexMap& map);
IconContent ContentOf(AtlavexIcon& icon);
LibraryContent ContentOf(AtlavexLibrary& library);

/// What an operation throws; "nothing" as number 0.
struct Outcome {
    int code = 0;
    std::string description;
};
Outcome OutcomeOf(const std::function<void()>& operation);

#define EXPECT_ERROR(operation, number)                                                                      \
    do {                                                                                                     \
        const Outcome thrown = OutcomeOf([&] { operation; });                                                \
        EXPECT_EQ(thrown.code, static_cast<int>(number)) << thrown.description;                              \
    } while (false)

/// A folder of its own for every test, cheap keys, and a library or two.
class LibraryTest : public testing::Test {
protected:
    LibraryTest();

    /// Options with cheap keys and the scratch in a folder of this test.
    LibraryOptions Options() const;
    std::unique_ptr<AtlavexLibrary> NewLibrary() const { return CreateAtlavexLibrary(Options()); }
    std::unique_ptr<AtlavexLibrary> NewDirectLibrary() const;
    /// A library that has loaded the file.
    std::unique_ptr<AtlavexLibrary> Open(const std::string& file, const std::string& key = {}) const;
    std::unique_ptr<AtlavexLibrary> OpenDirectly(const std::string& file, const std::string& key = {}) const;

    std::string PathOf(const std::string& name) const { return (folder_ / name).string(); }
    std::filesystem::path ScratchFolder() const { return folder_ / "scratch"; }
    /// The names in the test's folder (or another), sorted.
    std::vector<std::string> Names(const std::filesystem::path& folder = {}) const;

    /// Writes the sheet as an image file and gives its path.
    std::string ImageOf(const Sheet& sheet);
    std::shared_ptr<AtlavexMap> AddMap(AtlavexLibrary& library, const Sheet& sheet,
                                       const std::string& name = "sheet", std::int32_t tileWidth = 128,
                                       std::int32_t tileHeight = 64);
    std::shared_ptr<AtlavexIcon> AddIcon(AtlavexLibrary& library, const Sheet& sheet,
                                         const std::string& name = "icon");
    static std::shared_ptr<AtlavexMap> MapAt(AtlavexLibrary& library, std::int32_t position) {
        return library.GetMap(library.MapIdAt(position));
    }
    static std::shared_ptr<AtlavexIcon> IconAt(AtlavexLibrary& library, std::int32_t position) {
        return library.GetIcon(library.IconIdAt(position));
    }

    /// Fills a library with two maps (a polar one with a grid, an affine one with a datum) and two icons that
    /// use every field, and gives what they should give back.
    void FillRichly(AtlavexLibrary& library);
    /// The same, saved; gives the content.
    LibraryContent SaveRichLibrary(const std::string& file, const std::string& key = {});
    /// Scales the map linearly, with all that only files of version 2 hold.
    static void GiveParticulars(AtlavexMap& map);
    /// Scales it so that nothing is known of its place in WGS84.
    static void GiveUnknownShift(AtlavexMap& map);

    /// Expects that the file opens under the key, is whole and holds the content.
    void ExpectHolds(const std::string& file, const std::string& key, const LibraryContent& content) const;

private:
    TempFolder folder_;
    int images_ = 0;
};
