// A file is made and locked in two steps, and a sweeper may come between: what both do then. The program puts
// its own flock in front of the system's, so that things happen at the worst moment and not by chance.

#include "base/ComponentError.h"
#include "base/NewFile.h"
#include "base/TemporaryFile.h"
#include "component/storage/files/FileReplacement.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <sys/file.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace {

namespace fs = std::filesystem;

/// What happens just before the next file is locked; once.
std::function<void()>& BeforeLocking() {
    static std::function<void()> event;
    return event;
}

/// The error of every lock; 0 for none.
int& LockError() {
    static int error = 0;
    return error;
}

/// A lock that fails has no other effect, as with a file system that has none.
int LockOrFail(int descriptor, int operation) {
    if (const auto event = std::exchange(BeforeLocking(), nullptr))
        event();
    if (LockError() == 0)
        return static_cast<int>(syscall(SYS_flock, descriptor, operation));
    errno = LockError();
    return -1;
}

class LockedFiles : public testing::Test {
protected:
    ~LockedFiles() override {
        BeforeLocking() = nullptr;
        LockError() = 0;
    }

    const std::shared_ptr<FileSystem> files_ = SystemFiles();
    TempFolder folder_;
    const fs::path path_ = folder_ / ".lib.Atlavex.0123456789abcdef.tmp";
};

} // namespace

extern "C" int flock(int descriptor, int operation) noexcept {
    return LockOrFail(descriptor, operation);
}

TEST_F(LockedFiles, StayWhenASweeperComesAfterTheLock) {
    const auto locked = files_->CreateLocked(path_);
    files_->RemoveIfAbandoned(path_);
    EXPECT_TRUE(fs::exists(path_));
}

TEST_F(LockedFiles, AreMadeAgainWhenASweeperCameBetween) {
    bool swept = false;
    BeforeLocking() = [&] {
        SystemFiles()->RemoveIfAbandoned(path_);
        swept = !fs::exists(path_);
    };
    const auto locked = files_->CreateLocked(path_);
    ASSERT_TRUE(swept) << "nothing happened between making and locking";
    ASSERT_TRUE(fs::exists(path_));
    files_->RemoveIfAbandoned(path_);
    EXPECT_TRUE(fs::exists(path_)) << "it is this file that is locked";
}

TEST_F(LockedFiles, TakePlaceAlthoughASweeperCameBetween) {
    const fs::path target = folder_ / "lib.Atlavex";
    BeforeLocking() = [&] { SweepTemporaries(*SystemFiles(), target); };
    FileReplacement replacement(files_, target);
    ASSERT_FALSE(BeforeLocking());
    ASSERT_TRUE(fs::exists(replacement.Temporary()));
    WriteWholeFile(replacement.Temporary(), "new");
    replacement.Place(FileReplacement::Former::Ours);
    EXPECT_EQ(ReadWholeFile(target), "new");
}

TEST_F(LockedFiles, AreWaitedForWhileASweeperHoldsTheirLock) {
    constexpr int Interruptions = 3;
    int interrupted = 0;
    LockError() = EINTR;
    std::function<void()> interrupt = [&] {
        if (++interrupted == Interruptions)
            LockError() = 0;
        else
            BeforeLocking() = interrupt;
    };
    BeforeLocking() = interrupt;
    const auto locked = files_->CreateLocked(path_);
    EXPECT_EQ(interrupted, Interruptions);
    EXPECT_TRUE(fs::exists(path_));
}

TEST_F(LockedFiles, AreNotSweptUnderANameThatAnotherTookMeanwhile) {
    WriteWholeFile(path_, "abandoned");
    std::unique_ptr<FileSystem::LockedFile> another;
    BeforeLocking() = [&] {
        fs::remove(path_);
        another = SystemFiles()->CreateLocked(path_);
    };
    files_->RemoveIfAbandoned(path_);
    ASSERT_TRUE(another);
    EXPECT_TRUE(fs::exists(path_));
}

TEST_F(LockedFiles, AreNotSweptFromThePlaceThatTheyTookMeanwhile) {
    const fs::path target = folder_ / "lib.Atlavex";
    WriteWholeFile(path_, "new");
    BeforeLocking() = [&] { fs::rename(path_, target); };
    files_->RemoveIfAbandoned(path_);
    EXPECT_EQ(ReadWholeFile(target), "new");
}

TEST_F(LockedFiles, LeaveNothingBehindWhenTheyCannotBeLocked) {
    LockError() = ENOLCK;
    EXPECT_THROW(files_->CreateLocked(path_), ComponentError);
    EXPECT_FALSE(fs::exists(path_));
    const fs::path target = folder_ / "lib.Atlavex";
    EXPECT_THROW(FileReplacement(files_, target), ComponentError);
    EXPECT_TRUE(fs::is_empty(folder_.Path()));
}

TEST_F(LockedFiles, OfACommandAreMadeAgainOrLeaveNothingToo) {
    const fs::path target = folder_ / "picture.png";
    bool swept = false;
    BeforeLocking() = [&] {
        for (const auto& entry : fs::directory_iterator(folder_.Path()))
            RemoveIfAbandoned(entry.path());
        swept = fs::is_empty(folder_.Path());
    };
    NewFile(target).Commit();
    EXPECT_TRUE(swept) << "nothing happened between making and locking";
    EXPECT_TRUE(fs::exists(target));
    fs::remove(target);
    LockError() = ENOLCK;
    EXPECT_THROW(NewFile{target}, ComponentError);
    EXPECT_TRUE(fs::is_empty(folder_.Path()));
}

TEST_F(LockedFiles, ThatExistedBeforeAreNeitherTakenNorRemoved) {
    WriteWholeFile(path_, "another's");
    EXPECT_THROW(files_->CreateLocked(path_), ComponentError);
    EXPECT_EQ(ReadWholeFile(path_), "another's");
}
