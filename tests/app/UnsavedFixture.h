#pragma once

#include "tests/app/ShellFixture.h"

/// A window with something to save.
class UnsavedTest : public ShellTest {
protected:
    /// The window with a library of a map and an icon that has something to save.
    void StartWithEdit() {
        file_ = MakeLibrary("a.Atlavex", {{20, 20}, {30, 30}}, 1);
        Start();
        OpenByMenu(file_);
        Edit();
    }
    /// The icon's offset as it stands in the file.
    std::int32_t SavedOffset() const {
        const auto library = Open(file_);
        return IconAt(*library, 1)->OffsetX();
    }
    void ExpectLibraryKept() {
        EXPECT_NE(State().objAtlavex, nullptr);
        EXPECT_EQ(EntriesOf("ddMaps"), QStringList({QStringLiteral("map1"), QStringLiteral("map2")}));
        EXPECT_EQ(EntriesOf("ddIcons"), QStringList(QStringLiteral("icon1")));
        EXPECT_EQ(EntryOf("ddMaps"), 0);
        EXPECT_EQ(Title(), "Quorvant Studio - " + file_);
    }

    std::string file_;
};
