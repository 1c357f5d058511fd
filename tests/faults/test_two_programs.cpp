// Two programs, or two windows, that work on one library, and journals that lie beside it.

#include "base/ComponentError.h"
#include "tests/faults/FaultLab.h"
#include "tests/faults/RecordingVfs.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

namespace {

namespace fs = std::filesystem;

/// Another program that holds the write lock of a library until it is let go.
class LockHolder {
public:
    explicit LockHolder(const fs::path& file) {
        int ready[2] = {};
        if (pipe(ready) != 0)
            throw std::runtime_error("no pipe");
        child_ = fork();
        if (child_ == 0) {
            dup2(ready[1], STDOUT_FILENO);
            execlp("/usr/bin/python3", "python3", "-c",
                   "import sqlite3,sys,time\n"
                   "c=sqlite3.connect(sys.argv[1],isolation_level=None)\n"
                   "c.execute('BEGIN IMMEDIATE')\nprint('x',flush=True)\ntime.sleep(60)",
                   file.c_str(), nullptr);
            _exit(127);
        }
        close(ready[1]);
        char told = 0;
        const bool isHeld = read(ready[0], &told, 1) == 1;
        close(ready[0]);
        if (!isHeld)
            throw std::runtime_error("the lock was not to be had");
    }
    ~LockHolder() {
        kill(child_, SIGKILL);
        waitpid(child_, nullptr, 0);
    }
    LockHolder(const LockHolder&) = delete;
    LockHolder& operator=(const LockHolder&) = delete;

private:
    pid_t child_ = -1;
};

class TwoPrograms : public testing::Test {
protected:
    void SetUp() override {
        fs::create_directory(folder_ / "scratch");
        MakeLibrary(file_, 1, 200);
        library_ = CreateAtlavexLibrary(CheapOptions((folder_ / "scratch").string()));
        library_->LoadFromFile(file_.string(), "");
        library_->GetMap(library_->MapIdAt(1))->SetMetadata("author", "First program");
    }

    ErrorNumber SaveError(const fs::path& target, const std::string& key = {}) {
        try {
            library_->SaveToFile(target.string(), key);
        } catch (const ComponentError& error) {
            sentence_ = error.Description();
            return error.Number();
        }
        return {};
    }

    ProgramResult Other(const std::string& operation, const std::string& argument = {}) const {
        return RunWith(
            {"FAULT_NEW_KEY=" + TestKey},
            {DriverProgram(), operation, (folder_ / "scratch").string(), file_.string(), argument});
    }

    TempFolder folder_;
    fs::path file_ = folder_ / "sheet.Atlavex";
    std::unique_ptr<AtlavexLibrary> library_;
    std::string sentence_;
};

} // namespace

TEST_F(TwoPrograms, DoNotOverwriteEachOthersSaves) {
    ASSERT_EQ(Other("set-metadata", "second program").status, 0);
    const std::string theirs = ContentOfFile(file_);
    for (const std::string key : {"", TestKey.c_str()}) {
        EXPECT_EQ(SaveError(file_, key), ErrorNumber::FileChanged) << sentence_;
        EXPECT_NE(sentence_.find("changed by another program"), std::string::npos) << sentence_;
        EXPECT_EQ(ContentOfFile(file_), theirs);
    }
    EXPECT_EQ(SaveError(folder_ / "mine.Atlavex"), ErrorNumber{}) << "the way out: " << sentence_;
}

TEST_F(TwoPrograms, DoNotOverwriteAFileThatWasReplaced) {
    ASSERT_EQ(Other("rekey").status, 0);
    const std::string theirs = ReadWholeFile(file_);
    EXPECT_EQ(SaveError(file_), ErrorNumber::FileChanged) << sentence_;
    EXPECT_EQ(SaveError(file_, TestKey), ErrorNumber::FileChanged) << sentence_;
    EXPECT_EQ(ReadWholeFile(file_), theirs);
}

TEST_F(TwoPrograms, WriteAFileThatWasDeletedWhole) {
    const std::string mine = ContentOf(*library_);
    fs::remove(file_);
    EXPECT_EQ(SaveError(file_), ErrorNumber{}) << sentence_;
    EXPECT_EQ(ContentOfFile(file_), mine);
}

TEST_F(TwoPrograms, WaitForALockAMomentAndThenSaySo) {
    const std::string bytes = ReadWholeFile(file_);
    const std::string expected = ContentOf(*library_);
    {
        const LockHolder holder(file_);
        for (const std::string key : {"", TestKey.c_str()}) {
            EXPECT_EQ(SaveError(file_, key), ErrorNumber::FileLocked) << sentence_;
            EXPECT_EQ(ReadWholeFile(file_), bytes);
        }
    }
    EXPECT_EQ(SaveError(file_), ErrorNumber{}) << sentence_;
    EXPECT_EQ(ContentOfFile(file_), expected);
}

TEST_F(TwoPrograms, ReadWhileAnotherHoldsTheWriteLock) {
    const LockHolder holder(file_);
    EXPECT_EQ(ContentOfFile(file_).find("error"), std::string::npos);
    EXPECT_FALSE(library_->IsEncrypted(file_.string()));
}

TEST_F(TwoPrograms, KeepTheirLockWhenTheFileIsLookedAtOnceMore) {
    LibraryOptions options = CheapOptions((folder_ / "scratch").string());
    options.newTiles = NewTiles::LibraryFile;
    library_ = CreateAtlavexLibrary(options);
    library_->LoadFromFile(file_.string(), "");
    MakeNoiseImage(folder_ / "extra.bmp", 300, 300, 1);
    library_->AddMapFromImageFile((folder_ / "extra.bmp").string(), "Added", 256, 256); // holds the lock
    library_->IsEncrypted(file_.string());
    library_->MergeFromFile(file_.string(), "");
    const std::string expected = ContentOf(*library_);
    const ProgramResult other = Other("set-metadata", "second program");
    EXPECT_EQ(FirstError(other), static_cast<int>(ErrorNumber::FileLocked)) << other.out;
    EXPECT_EQ(SaveError(file_), ErrorNumber{}) << sentence_;
    EXPECT_EQ(ContentOfFile(file_), expected);
}

/// SQLite would roll a journal that lies there into the new file and destroy it.
TEST_F(TwoPrograms, PutNoFileBesideAForeignJournalOrLog) {
    const fs::path target = folder_ / "foreign.Atlavex";
    for (const std::string ending : {"-journal", "-wal"}) {
        WriteWholeFile(target, "something");
        WriteWholeFile(target.string() + ending, "journal");
        EXPECT_EQ(SaveError(target), ErrorNumber::FileLocked) << sentence_;
        EXPECT_NE(sentence_.find(target.string() + ending), std::string::npos) << sentence_;
        EXPECT_EQ(ReadWholeFile(target), "something");
        EXPECT_EQ(ReadWholeFile(target.string() + ending), "journal");
        EXPECT_TRUE(Temporaries(folder_.Path()).empty());
        fs::remove(target.string() + ending);
    }
}

TEST_F(TwoPrograms, TakeTheFormerContentBackWhenOneIsKilled) {
    RunProgram({"strace", "-f", "-qq", "-o", "/dev/null", "-e", "inject=unlink:signal=SIGKILL:when=1",
                DriverProgram(), "set-metadata", (folder_ / "scratch").string(), file_.string(), "x"});
    ASSERT_TRUE(fs::exists(file_.string() + "-journal"));
    const std::string expected = ContentOf(*library_);
    EXPECT_EQ(SaveError(file_, TestKey), ErrorNumber{}) << "what the other did not finish is no change";
    EXPECT_EQ(ContentOfFile(file_, TestKey), expected);
    EXPECT_FALSE(fs::exists(file_.string() + "-journal"));
}

/// Wherever the reading program lets go of the file for a moment, the other one saves: what is read is one of
/// the two states, never half of each.
TEST_F(TwoPrograms, ReadOneStateWhereverTheOtherSavesBetween) {
    RecordingVfs::Install();
    std::string former;
    int moment = 0;
    for (bool saved = true; saved; ++moment) {
        const std::string next = "save " + std::to_string(moment);
        int unlocked = 0;
        saved = false;
        RecordingVfs::OnUnlock([&](const std::string& name) {
            if (name != file_.string() || unlocked++ != moment)
                return;
            saved = true;
            EXPECT_EQ(Other("set-metadata", next).status, 0);
        });
        const auto reader = CreateAtlavexLibrary(CheapOptions((folder_ / "scratch").string()));
        EXPECT_NO_THROW(reader->LoadFromFile(file_.string(), "")) << "at moment " << moment;
        RecordingVfs::OnUnlock({});
        ASSERT_EQ(reader->MapCount(), 1) << "at moment " << moment;
        const std::string read = reader->GetMap(reader->MapIdAt(1))->GetMetadata("remark");
        EXPECT_TRUE(read == former || read == next) << read << " at moment " << moment;
        former = next;
    }
    EXPECT_GT(moment, 3) << "the file was hardly ever let go";
}
