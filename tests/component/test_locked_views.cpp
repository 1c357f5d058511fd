// How long a view waits for a file that another program has locked. The program counts the time that SQLite
// asks the system to let it sleep.

#include "tests/component/LibraryFixture.h"
#include "tests/component/OtherProgram.h"

#include <sqlite3.h>

#include <atomic>

namespace {

/// Microseconds slept for locks so far.
std::atomic<std::int64_t>& Slept() {
    static std::atomic<std::int64_t> slept{0};
    return slept;
}

int CountSleep(sqlite3_vfs* vfs, int microseconds) {
    Slept() += microseconds;
    sqlite3_vfs* const real = static_cast<sqlite3_vfs*>(sqlite3_vfs_find("unix"));
    return real != nullptr && real != vfs ? real->xSleep(real, microseconds) : 0;
}

/// Stands in front of the system from then on.
void CountSleeps() {
    static sqlite3_vfs counting = [] {
        sqlite3_vfs copy = *sqlite3_vfs_find("unix");
        copy.zName = "counting";
        copy.xSleep = CountSleep;
        return copy;
    }();
    if (sqlite3_vfs_register(&counting, 1) != SQLITE_OK)
        throw std::runtime_error("SQLite takes no other way to the system");
}

class LockedViews : public LibraryTest {
protected:
    void SetUp() override {
        CountSleeps();
        const auto library = NewLibrary();
        AddMap(*library, MakeSheet(PixelFormat::Rgb, 1200, 900));
        library->SaveToFile(file_, "");
    }

    std::unique_ptr<AtlavexLibrary> Patient(int milliseconds) const {
        LibraryOptions options = Options();
        options.viewPatience = milliseconds;
        options.threads = 2;
        auto library = CreateAtlavexLibrary(options);
        library->LoadFromFile(file_, "");
        return library;
    }

    std::string file_ = PathOf("lib.Atlavex");
};

constexpr std::int64_t Second = 1000000;

} // namespace

TEST_F(LockedViews, WaitABlinkWhereADraftIsShownInTheirPlace) {
    const auto library = Patient(20);
    const LockingProgram writer(file_, "EXCLUSIVE");
    std::shared_ptr<const AtlavexImage> view;
    for (int turn = 0; turn < 3; ++turn) {
        Slept() = 0;
        MapAt(*library, 1)->RenderView(0, 0, 1000, 800, view);
        EXPECT_TRUE(MapAt(*library, 1)->ViewIsObstructed());
        EXPECT_GT(Slept(), 0) << "the lock of a small save is waited for";
        EXPECT_LT(Slept(), Second / 4) << "by two threads";
    }
}

TEST_F(LockedViews, LeaveTheWaitOfASaveAsItIs) {
    const auto library = Patient(20);
    std::shared_ptr<const AtlavexImage> view;
    MapAt(*library, 1)->RenderView(0, 0, 1000, 800, view);
    MapAt(*library, 1)->SetMetadata("author", "Somebody");
    const LockingProgram writer(file_);
    Slept() = 0;
    EXPECT_ERROR(library->SaveToFile(file_, ""), ErrorNumber::FileLocked);
    EXPECT_GT(Slept(), Second);
}

TEST_F(LockedViews, WaitAMomentWhereOnlyTheFinalOneCounts) {
    const auto library = Patient(0);
    const LockingProgram writer(file_, "EXCLUSIVE");
    std::shared_ptr<const AtlavexImage> view;
    Slept() = 0;
    EXPECT_ERROR(MapAt(*library, 1)->RenderView(0, 0, 100, 80, view), ErrorNumber::FileLocked);
    EXPECT_GT(Slept(), Second);
}
