#include "app/ImageNames.h"

#include <gtest/gtest.h>

TEST(ImageNames, AreProposedUpToTheFirstPoint) {
    const auto proposed = [](const char* path) {
        return ProposedName(QString::fromUtf8(path)).toStdString();
    };
    EXPECT_EQ(proposed("/maps/north.part.bmp"), "north");
    EXPECT_EQ(proposed("/maps.old/north"), "north");
    EXPECT_EQ(proposed("/maps/.hidden"), "");
    EXPECT_EQ(proposed("C:\\maps\\north.tif"), "north");
    EXPECT_EQ(proposed("/maps/a\\b.tif"), "a\\b");
    EXPECT_EQ(proposed("north"), "north");
    EXPECT_EQ(proposed("/maps/"), "");
    EXPECT_EQ(proposed(""), "");
}

TEST(ImageNames, TheWorldfileOfATiffEndsInTfw) {
    const auto worldfile = [](const char* path) {
        return WorldfileFor(QString::fromUtf8(path)).toStdString();
    };
    EXPECT_EQ(worldfile("/maps/a.tif"), "/maps/a.tfw");
    EXPECT_EQ(worldfile("/maps/a.tiff"), "/maps/a.tfw");
    EXPECT_EQ(worldfile("/maps/a.b.tif"), "/maps/a.b.tfw");
    EXPECT_EQ(worldfile("/maps/.tif"), "/maps/.tfw");
    for (const char* const path : {"/maps/a.TIF", "/maps/a.Tiff", "/maps/a.tiff ", "/maps/a.png", "/maps/tif",
                                   "tif", "/maps.tif/a", ""})
        EXPECT_EQ(worldfile(path), "") << path;
}
