// Records that no writer wrote: refused before anything of their size is allocated.

#include "component/storage/ByteCodec.h"
#include "component/storage/Records.h"
#include "tests/faults/FaultLab.h"

#include <gtest/gtest.h>

TEST(HostileRecords, OfIconsMayNotAskForMorePixelsThanAnIconHas) {
    IconRecord icon;
    icon.picture.number = 1;
    icon.width = 4096;
    icon.height = 4096;
    EXPECT_EQ(IconRecord::Decode(icon.Encode()), icon);
    icon.height = 4097;
    EXPECT_THROW(IconRecord::Decode(icon.Encode()), MalformedRecord);
    icon.width = icon.height = 2147483647;
    EXPECT_THROW(IconRecord::Decode(icon.Encode()), MalformedRecord);
}

/// So small a zoom that its inverse is no number any more; the sanitizers see what comes of it.
TEST(HostileRecords, OfMapsMayHaveTheSmallestZoomThereIs) {
    const TempFolder folder;
    MakeLibrary(folder / "sheet.Atlavex", 1, 100);
    const auto library = CreateAtlavexLibrary(CheapOptions(folder.Path().string()));
    library->LoadFromFile((folder / "sheet.Atlavex").string(), "");
    const auto map = library->GetMap(library->MapIdAt(1));
    for (const double zoom : {5e-324, 1e-310, 1e-300, 1e300}) {
        map->SetZoom(zoom);
        std::shared_ptr<const AtlavexImage> view;
        EXPECT_TRUE(map->RenderView(0, 0, 50, 50, view)) << zoom;
    }
}
