#include "component/Recovery.h"
#include "tests/app/UnsavedFixture.h"
#include "tests/support/RunProgram.h"
#include "tests/support/ScopedVariable.h"

#include <sys/wait.h>
#include <unistd.h>

namespace {

/// What the editor keeps of work that is not saved, and what it says of what others left.
class KeptWork : public UnsavedTest {
protected:
    KeptWork() : cache_("XDG_CACHE_HOME", PathOf("cache")) {}

    /// What would be got back if the program were gone now.
    LibraryContent RecoveredNow() const {
        EXPECT_EQ(FindUnsavedWork().size(), 1U);
        const std::string scratch = FindUnsavedWork().at(0).scratch;
        std::filesystem::copy_file(scratch, PathOf("copy.scratch"),
                                   std::filesystem::copy_options::overwrite_existing);
        const auto library = NewLibrary();
        library->LoadUnsavedWork(PathOf("copy.scratch"), {}, {});
        return ContentOf(*library);
    }
    LibraryContent Shown() const { return ContentOf(*State().objAtlavex); }

    static ProgramResult StartWithoutDisplay() {
        return RunProgram({"timeout", "60", "env", "-u", "DISPLAY", "-u", "WAYLAND_DISPLAY",
                           "QT_QPA_PLATFORM=xcb", BUILD_DIR "/quorvant-studio"});
    }

private:
    ScopedVariable cache_;
};

} // namespace

TEST_F(KeptWork, IsWhatEveryCommandLeaves) {
    StartWithEdit();
    EXPECT_EQ(RecoveredNow(), Shown());
    AddIconByMenu();
    EXPECT_EQ(RecoveredNow(), Shown());
    Expecting().ExpectBox(QStringLiteral("Are you sure you want to delete 'map1' map?"), QMessageBox::Yes);
    Choose("mBitmapDelete");
    EXPECT_EQ(State().objAtlavex->MapCount(), 1);
    EXPECT_EQ(RecoveredNow(), Shown());
}

TEST_F(KeptWork, EndsWithTheSave) {
    StartWithEdit();
    Choose("mFileSaveAtlavex");
    EXPECT_FALSE(State().modified);
    EXPECT_TRUE(FindUnsavedWork().empty());
}

TEST_F(KeptWork, IsNotThereWhereNothingIsToSave) {
    const std::string file = MakeLibrary("a.Atlavex", {{20, 20}}, 1);
    Start();
    OpenByMenu(file);
    EXPECT_TRUE(FindUnsavedWork().empty());
}

TEST_F(KeptWork, OfAnotherProgramIsToldAtTheStart) {
    EXPECT_EQ(StartWithoutDisplay().err.find("Unsaved work"), std::string::npos);
    const std::string file = MakeLibrary("a.Atlavex", {{20, 20}}, 1);
    const pid_t child = fork();
    if (child == 0) {
        LibraryOptions options;
        options.keepUnsavedWork = true;
        auto* const library = CreateAtlavexLibrary(options).release();
        library->LoadFromFile(file, {});
        library->GetMap(library->MapIdAt(1))->SetMetadata("name", "Renamed");
        library->KeepUnsavedWork();
        _exit(0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_EQ(FindUnsavedWork().size(), 1U);
    const std::string scratch = FindUnsavedWork()[0].scratch;
    const std::string said = StartWithoutDisplay().err;
    EXPECT_THAT(
        said, testing::HasSubstr("Unsaved work was left by a program that ended unexpectedly, on '" + file));
    EXPECT_THAT(said, testing::HasSubstr("atlavex recover '" + scratch + "' --to NEW.Atlavex\n"));
    EXPECT_THAT(said, testing::HasSubstr("atlavex recover '" + scratch + "' --discard\n"));
    EXPECT_TRUE(std::filesystem::exists(scratch)) << "a start sweeps it no more than another import";
}
