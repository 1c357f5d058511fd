// Files that take another's place: the lock on the former one, its second names, its owner and group.

#include "base/ComponentError.h"
#include "tests/faults/FaultLab.h"
#include "tests/faults/RecordingFiles.h"
#include "tests/support/MountedDisk.h"

#include <gmock/gmock.h>

#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

/// Whether another program can have the write lock of a file just now.
bool CanBeWritten(const fs::path& file) {
    return RunProgram({"/usr/bin/python3", "-c",
                       "import sqlite3,sys\n"
                       "c=sqlite3.connect(sys.argv[1],isolation_level=None,timeout=0)\n"
                       "c.execute('BEGIN IMMEDIATE')",
                       file.string()})
               .status == 0;
}

struct stat StatusOf(const fs::path& file) {
    struct stat status {};
    if (stat(file.c_str(), &status) != 0)
        throw std::runtime_error("no file " + file.string());
    return status;
}

class ReplacedFiles : public testing::Test {
protected:
    void SetUp() override {
        fs::permissions(folder_.Path(), fs::perms::all);
        fs::create_directory(folder_ / "scratch");
        fs::permissions(folder_ / "scratch", fs::perms::all);
        MakeLibrary(own_, 1, 200);
    }

    ProgramResult Drive(const std::string& operation, const fs::path& file, const std::string& argument = {},
                        std::vector<std::string> before = {}) const {
        for (const std::string& word :
             {DriverProgram(), operation, (folder_ / "scratch").string(), file.string(), argument})
            before.push_back(word);
        return RunWith({"FAULT_NEW_KEY="}, before);
    }
    /// As a user who is in the group 2000 and owns nothing here.
    static std::vector<std::string> AsMember() {
        return {"setpriv", "--reuid=1000", "--regid=1000", "--groups=1000,2000"};
    }
    static std::vector<std::string> AsStranger() {
        return {"setpriv", "--reuid=1000", "--regid=1000", "--groups=1000"};
    }

    /// Where the user is not root, not even of all users in a namespace, nobody else can be had.
    bool OthersCanBeHad() const {
        return chown(own_.c_str(), 1000, 2000) == 0 && chown(own_.c_str(), geteuid(), getegid()) == 0;
    }

    TempFolder folder_;
    fs::path own_ = folder_ / "own.Atlavex";
    fs::path target_ = folder_ / "target.Atlavex";
};

} // namespace

TEST_F(ReplacedFiles, AreLockedFromBeforeTheyAreKeptUntilTheyAreReplaced) {
    MakeLibrary(target_, 1, 100);
    const auto files = std::make_shared<RecordingFiles>();
    LibraryOptions options = CheapOptions((folder_ / "scratch").string());
    options.files = files;
    const auto library = CreateAtlavexLibrary(options);
    library->LoadFromFile(own_.string(), "");
    std::vector<std::string> writable;
    files->watch = [&](const std::string& step) {
        if (CanBeWritten(target_))
            writable.push_back(step);
    };
    library->SaveToFile(target_.string(), "");
    EXPECT_THAT(writable, testing::ElementsAre("create", "sync", "sync folder"));
}

TEST_F(ReplacedFiles, WithOneNameAloneAreLockedWhileTheyAreCopied) {
    MakeLibrary(target_, 1, 100);
    const std::string former = ReadWholeFile(target_);
    // The copy ends with a sync of its own; what the lock is worth then shows in the log of locks and
    // renames.
    const fs::path log = folder_ / "log";
    const ProgramResult result = Drive("save-as", own_, target_.string(),
                                       {"strace", "-f", "-qq", "-y", "-o", log.string(), "-e",
                                        "trace=link,close,rename,fcntl", "-e", "inject=link:error=EPERM"});
    ASSERT_EQ(result.status, 0) << result.out;
    EXPECT_EQ(ReadWholeFile(target_.string() + ".bak"), former);
    const std::string calls = ReadWholeFile(log);
    const std::size_t linked = calls.find("link("), renamed = calls.find("rename(", linked);
    ASSERT_NE(renamed, std::string::npos);
    const std::string between = calls.substr(linked, renamed - linked);
    EXPECT_EQ(between.find("target.Atlavex>)"), std::string::npos) << "closing drops the lock: " << between;
}

TEST_F(ReplacedFiles, ThatAnotherProgramIsWritingAreNotReplaced) {
    MakeLibrary(target_, 1, 100);
    const std::string former = ReadWholeFile(target_);
    const ProgramResult result =
        RunWith({"FAULT_NEW_KEY="}, {"/usr/bin/python3", "-c",
                                     "import sqlite3,subprocess,sys\n"
                                     "c=sqlite3.connect(sys.argv[1],isolation_level=None)\n"
                                     "c.execute('BEGIN IMMEDIATE')\n"
                                     "sys.exit(subprocess.run(sys.argv[2:]).returncode)",
                                     target_.string(), DriverProgram(), "save-as",
                                     (folder_ / "scratch").string(), own_.string(), target_.string()});
    EXPECT_EQ(FirstError(result), static_cast<int>(ErrorNumber::FileLocked)) << result.out;
    EXPECT_EQ(ReadWholeFile(target_), former);
    EXPECT_FALSE(fs::exists(target_.string() + ".bak"));
    EXPECT_TRUE(Temporaries(folder_.Path()).empty());
}

/// By a program that knows no locks.
TEST_F(ReplacedFiles, ThatGetAJournalWhileTheyAreKeptAreNotReplaced) {
    MakeLibrary(target_, 1, 100);
    const std::string former = ReadWholeFile(target_);
    const auto files = std::make_shared<RecordingFiles>();
    LibraryOptions options = CheapOptions((folder_ / "scratch").string());
    options.files = files;
    const auto library = CreateAtlavexLibrary(options);
    library->LoadFromFile(own_.string(), "");
    files->watch = [&](const std::string& step) {
        if (step.starts_with("name "))
            WriteWholeFile(target_.string() + "-journal", "of a save");
    };
    EXPECT_THROW(library->SaveToFile(target_.string(), ""), ComponentError);
    EXPECT_EQ(ReadWholeFile(target_), former);
    EXPECT_EQ(ReadWholeFile(target_.string() + "-journal"), "of a save");
    EXPECT_FALSE(fs::exists(target_.string() + ".bak"));
}

TEST_F(ReplacedFiles, KeepNoHalfBackupOnAFullDisk) {
    const MountedDisk disk(folder_ / "disk", "size=500k");
    const fs::path target = disk / "target.Atlavex";
    CopyFile(own_, target);
    const std::string former = ReadWholeFile(target);
    ASSERT_GT(former.size(), 170000U) << "three of them must not fit";
    ASSERT_LT(former.size(), 240000U) << "two of them must";
    const ProgramResult result =
        Drive("save-as", own_, target.string(),
              {"strace", "-f", "-qq", "-o", "/dev/null", "-e", "inject=link:error=EPERM"});
    EXPECT_EQ(FirstError(result), static_cast<int>(ErrorNumber::DiskFull)) << result.out;
    EXPECT_EQ(ReadWholeFile(target), former);
    EXPECT_FALSE(fs::exists(target.string() + ".bak"));
    EXPECT_TRUE(Temporaries(disk.Path()).empty());
}

TEST_F(ReplacedFiles, WithASecondNameAreWrittenAnewUnderOne) {
    const fs::path second = folder_ / "second.Atlavex";
    fs::create_hard_link(own_, second);
    const std::string former = ReadWholeFile(own_);
    const std::string content = ContentOfFile(own_);
    ASSERT_EQ(Drive("set-metadata", own_, "changed").status, 0);
    EXPECT_EQ(ReadWholeFile(second), former);
    EXPECT_EQ(fs::hard_link_count(own_), 1U);
    EXPECT_EQ(ContentOfFile(second), content);
    EXPECT_NE(ContentOfFile(own_), content);
    MakeNoiseImage(folder_ / "more.bmp", 100, 100, 1);
    fs::remove(second);
    fs::create_hard_link(own_, second);
    const std::string before = ReadWholeFile(own_);
    const ProgramResult added = Drive("direct-add-map", own_, (folder_ / "more.bmp").string());
    ASSERT_EQ(added.status, 0) << added.out;
    EXPECT_EQ(ReadWholeFile(second), before);
    EXPECT_THAT(ContentOfFile(own_), testing::StartsWith("2 maps"));
}

TEST_F(ReplacedFiles, OfSomebodyElseWithASecondNameAreNotSaved) {
    if (!OthersCanBeHad())
        GTEST_SKIP() << "needs other users";
    fs::create_hard_link(own_, folder_ / "second.Atlavex");
    fs::permissions(own_, fs::perms{0666});
    const std::string former = ReadWholeFile(own_);
    const ProgramResult result = Drive("set-metadata", own_, "changed", AsStranger());
    EXPECT_EQ(FirstError(result), static_cast<int>(ErrorNumber::FileNotWritable)) << result.out;
    EXPECT_THAT(result.out, HasSubstr("second name"));
    EXPECT_THAT(result.out, Not(HasSubstr("Save As"))) << "which only the editor has";
    EXPECT_EQ(ReadWholeFile(own_), former);
    EXPECT_EQ(fs::hard_link_count(own_), 2U);
}

TEST_F(ReplacedFiles, KeepTheirGroupWhereTheirUserMay) {
    if (!OthersCanBeHad())
        GTEST_SKIP() << "needs other users";
    ASSERT_EQ(chown(own_.c_str(), 0, 2000), 0);
    fs::permissions(own_, fs::perms{0660});
    const ProgramResult result = Drive("rekey", own_, {}, AsMember());
    ASSERT_EQ(result.status, 0) << result.out << result.err;
    const ProgramResult compacted = Drive("compact", own_, {}, AsMember());
    ASSERT_EQ(compacted.status, 0) << compacted.out;
    EXPECT_EQ(StatusOf(own_).st_uid, 1000U);
    EXPECT_EQ(StatusOf(own_).st_gid, 2000U);
    EXPECT_EQ(StatusOf(own_).st_mode & 07777, 0660U);
}

TEST_F(ReplacedFiles, GiveTheNewGroupNoMoreThanAllOthersHave) {
    if (!OthersCanBeHad())
        GTEST_SKIP() << "needs other users";
    ASSERT_EQ(chown(own_.c_str(), 0, 2000), 0);
    fs::permissions(own_, fs::perms{0664});
    // Saving in place needs more rights than reading it and writing to its folder.
    const ProgramResult result = Drive("save-as", own_, own_.string() + "2", AsStranger());
    ASSERT_EQ(result.status, 0) << result.out << result.err;
    ASSERT_EQ(chown((own_.string() + "2").c_str(), 0, 2000), 0);
    fs::permissions(own_.string() + "2", fs::perms{0664});
    const ProgramResult over = Drive("save-as", own_, own_.string() + "2", AsStranger());
    ASSERT_EQ(over.status, 0) << over.out << over.err;
    EXPECT_EQ(StatusOf(own_.string() + "2").st_gid, 1000U);
    EXPECT_EQ(StatusOf(own_.string() + "2").st_mode & 07777, 0644U);
}

TEST_F(ReplacedFiles, AreNotMadeSmallerWhereTheirOwnerWouldBeLost) {
    if (!OthersCanBeHad())
        GTEST_SKIP() << "needs other users";
    MakeLibrary(target_, 3, 300);
    ASSERT_EQ(chown(target_.c_str(), 0, 2000), 0);
    fs::permissions(target_, fs::perms{0660});
    const auto inode = StatusOf(target_).st_ino;
    for (int i = 0; i < 2; ++i)
        ASSERT_EQ(Drive("remove-map", target_, {}, AsMember()).status, 0);
    EXPECT_EQ(StatusOf(target_).st_ino, inode);
    EXPECT_EQ(StatusOf(target_).st_uid, 0U);
    ASSERT_EQ(Drive("set-metadata", target_, "by its owner").status, 0);
    EXPECT_NE(StatusOf(target_).st_ino, inode) << "its owner may";
}

TEST_F(ReplacedFiles, AreNotMadeSmallerWhereTheirGroupWouldBeLost) {
    if (!OthersCanBeHad())
        GTEST_SKIP() << "needs other users";
    MakeLibrary(target_, 3, 300);
    ASSERT_EQ(chown(target_.c_str(), 1000, 2000), 0);
    const auto inode = StatusOf(target_).st_ino;
    for (int i = 0; i < 2; ++i)
        ASSERT_EQ(Drive("remove-map", target_, {}, AsStranger()).status, 0);
    EXPECT_EQ(StatusOf(target_).st_ino, inode);
    EXPECT_EQ(StatusOf(target_).st_gid, 2000U);
}

/// Its head is empty: nothing of the file had been changed yet.
TEST_F(ReplacedFiles, WithAJournalThatWasNeverCompletedAreReplacedAndLoseIt) {
    const std::string content = ContentOfFile(own_);
    WriteWholeFile(own_.string() + "-journal", std::string(512, '\0'));
    const ProgramResult result = Drive("compact", own_);
    EXPECT_EQ(result.status, 0) << result.out;
    EXPECT_FALSE(fs::exists(own_.string() + "-journal"));
    EXPECT_EQ(ContentOfFile(own_), content);
}

TEST_F(ReplacedFiles, KeepTheirExtendedAttributes) {
    const std::string value = "survey office";
    if (setxattr(own_.c_str(), "user.origin", value.data(), value.size(), 0) != 0)
        GTEST_SKIP() << "this file system has no extended attributes";
    ASSERT_EQ(Drive("compact", own_).status, 0);
    std::string kept(100, '\0');
    const ssize_t size = getxattr(own_.c_str(), "user.origin", kept.data(), kept.size());
    ASSERT_GT(size, 0);
    EXPECT_EQ(kept.substr(0, static_cast<std::size_t>(size)), value);
}

/// Access lists name users and groups beside the owner's.
TEST_F(ReplacedFiles, KeepTheirAccessListWithTheirGroupAlone) {
    if (!OthersCanBeHad())
        GTEST_SKIP() << "needs other users";
    constexpr const char* AccessList = "system.posix_acl_access";
    // Version 2; owner rw-, user 3000 rw-, group r--, mask rw-, others r--.
    const std::string list("\2\0\0\0"
                           "\1\0\6\0\xff\xff\xff\xff"
                           "\2\0\6\0\xb8\x0b\0\0"
                           "\4\0\4\0\xff\xff\xff\xff"
                           "\x10\0\6\0\xff\xff\xff\xff"
                           "\x20\0\4\0\xff\xff\xff\xff",
                           44);
    const auto listOf = [&](const fs::path& file) {
        std::string found(100, '\0');
        const ssize_t size = getxattr(file.c_str(), AccessList, found.data(), found.size());
        return found.substr(0, static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    };
    MakeLibrary(target_, 1, 100);
    for (const fs::path& file : {own_, target_}) {
        ASSERT_EQ(chown(file.c_str(), 0, 2000), 0);
        if (setxattr(file.c_str(), AccessList, list.data(), list.size(), 0) != 0)
            GTEST_SKIP() << "this file system has no access lists";
    }
    ASSERT_EQ(Drive("compact", own_).status, 0);
    EXPECT_EQ(listOf(own_), list);
    EXPECT_EQ(StatusOf(own_).st_gid, 2000U);
    fs::path readable = folder_ / "readable.Atlavex";
    MakeLibrary(readable, 1, 100);
    fs::permissions(readable, fs::perms{0644});
    const ProgramResult over = Drive("save-as", readable, target_.string(), AsStranger());
    ASSERT_EQ(over.status, 0) << over.out;
    EXPECT_EQ(listOf(target_), "") << "made for the members of another group";
    EXPECT_EQ(StatusOf(target_).st_mode & 0777, 0644U);
}

TEST_F(ReplacedFiles, OnAFileSystemWithoutModesCanBeMade) {
    const ProgramResult result =
        Drive("save-as", own_, target_.string(),
              {"strace", "-f", "-qq", "-o", "/dev/null", "-e", "inject=fchmod:error=EPERM"});
    EXPECT_EQ(result.status, 0) << result.out;
    EXPECT_EQ(ContentOfFile(target_), ContentOfFile(own_));
}

/// The new state stands in the file when its folder fails; nobody shall take it for safe, nor for lost.
TEST_F(ReplacedFiles, WhoseFolderFailsAfterASaveInPlaceAreSaidToBeSavedAndNotSafe) {
    for (const std::string operation : {"set-metadata", "remove-map"}) {
        MakeLibrary(target_, 2, 200);
        const std::string former = ContentOfFile(target_);
        const ProgramResult result =
            Drive(operation, target_, "changed",
                  {"strace", "-f", "-qq", "-o", "/dev/null", "-P", folder_.Path().string(), "-e",
                   "trace=fdatasync", "-e", "inject=fdatasync:error=EIO"});
        EXPECT_EQ(FirstError(result), static_cast<int>(ErrorNumber::FileNotWritable)) << result.out;
        EXPECT_THAT(result.out, HasSubstr("is saved"));
        const std::string content = ContentOfFile(target_);
        EXPECT_EQ(content.find("error"), std::string::npos) << content;
        EXPECT_NE(content, former);
        EXPECT_EQ(content.starts_with("1 maps"), operation == "remove-map") << content;
        fs::remove(target_);
    }
}
