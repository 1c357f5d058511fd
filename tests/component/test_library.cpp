#include "component/AtlavexLibrary.h"
#include "tests/support/RunProgram.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

namespace {

LibraryOptions Cheap(const TempFolder& folder) {
    LibraryOptions options;
    options.scratchFolder = folder.Path().string();
    options.keyOperations = 1;
    options.keyMemoryMiB = 8;
    return options;
}

std::string MakeImage(const TempFolder& folder) {
    const std::string file = (folder / "sheet.png").string();
    const auto made =
        RunProgram({"/usr/bin/python3", "-c",
                    "import numpy as n,sys\nfrom PIL import Image\n"
                    "r=n.random.RandomState(1)\n"
                    "Image.fromarray(r.randint(0,255,(700,900,3),dtype=n.uint8)).save(sys.argv[1])",
                    file});
    EXPECT_EQ(made.status, 0) << made.err;
    return file;
}

std::vector<std::uint8_t> Pixels(AtlavexMap& map) {
    std::vector<std::uint8_t> all;
    map.ReadPixels([&](std::span<const std::uint8_t> rows, std::int32_t) {
        all.insert(all.end(), rows.begin(), rows.end());
    });
    return all;
}

} // namespace

TEST(Library, GivesBackAfterSaveAndReopenWhatWentIn) {
    const TempFolder folder;
    const std::string image = MakeImage(folder);
    for (const std::string key : {"", "geheim"}) {
        const std::string file = (folder / ("lib" + key + ".Atlavex")).string();
        const auto library = CreateAtlavexLibrary(Cheap(folder));
        const auto map = library->AddMapFromImageFile(image, "Blatt", 256, 128);
        map->SetMetadata("name", "Norden");
        map->SetZoom(0.5);
        map->SetScalingThreePoints({10, 50, 0, 0}, {11, 50, 899, 0}, {10, 49, 0, 699});
        const auto before = Pixels(*map);
        library->SaveToFile(file, key);
        EXPECT_EQ(Pixels(*map), before);
        EXPECT_EQ(library->IsEncrypted(file), !key.empty());
        const auto again = CreateAtlavexLibrary(Cheap(folder));
        again->LoadFromFile(file, key);
        ASSERT_EQ(again->MapCount(), 1);
        const auto loaded = again->GetMap(again->MapIdAt(1));
        EXPECT_EQ(loaded->Name(), "Norden");
        EXPECT_EQ(Pixels(*loaded), before);
        EXPECT_EQ(loaded->Zoom(), 0.5);
        EXPECT_TRUE(loaded->IsScaled());
        loaded->SetMetadata("author", "A");
        again->SaveToFile(file, key);
        again->MergeFromFile(file, key);
        EXPECT_EQ(again->MapCount(), 2);
        again->SaveToFile(file, key);
        EXPECT_TRUE(again->Verify().empty());
        const auto third = CreateAtlavexLibrary(Cheap(folder));
        third->LoadFromFile(file, key);
        ASSERT_EQ(third->MapCount(), 2);
        EXPECT_EQ(Pixels(*third->GetMap(third->MapIdAt(2))), before);
    }
}
