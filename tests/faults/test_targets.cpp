// Places where no library can be saved or loaded: full disks, read-only folders, and things that are no
// files.

#include "base/ComponentError.h"
#include "tests/faults/FaultLab.h"
#include "tests/support/MountedDisk.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

class Targets : public testing::Test {
protected:
    void SetUp() override {
        fs::create_directory(folder_ / "scratch");
        MakeLibrary(folder_ / "base.Atlavex", 1, 200);
        MakeNoiseImage(folder_ / "large.bmp", 900, 900, 3);
        library_ = CreateAtlavexLibrary(CheapOptions((folder_ / "scratch").string()));
    }

    void LoadBase() { library_->LoadFromFile((folder_ / "base.Atlavex").string(), ""); }
    void AddLargeMap() { library_->AddMapFromImageFile((folder_ / "large.bmp").string(), "Large", 256, 256); }

    /// The error of a save; 0 when there is none.
    ErrorNumber SaveError(const fs::path& target, const std::string& key = {}) {
        try {
            library_->SaveToFile(target.string(), key);
        } catch (const ComponentError& error) {
            sentence_ = error.Description();
            return error.Number();
        }
        return {};
    }
    ErrorNumber LoadError(const fs::path& file) {
        try {
            library_->LoadFromFile(file.string(), "");
        } catch (const ComponentError& error) {
            sentence_ = error.Description();
            return error.Number();
        }
        return {};
    }

    TempFolder folder_;
    std::unique_ptr<AtlavexLibrary> library_;
    std::string sentence_;
};

} // namespace

TEST_F(Targets, OnAFullDiskStayAsTheyAreAndTakeTheNextSave) {
    const fs::path disk = folder_ / "disk", target = disk / "sheet.Atlavex";
    const MountedDisk mounted(disk, "size=1m");
    CopyFile(folder_ / "base.Atlavex", target);
    const std::string bytes = ReadWholeFile(target);
    library_->LoadFromFile(target.string(), "");
    AddLargeMap(); // four times as large as the disk
    for (const std::string key : {"", TestKey.c_str()}) {
        EXPECT_EQ(SaveError(target, key), ErrorNumber::DiskFull) << sentence_;
        EXPECT_EQ(ReadWholeFile(target), bytes);
        EXPECT_TRUE(Temporaries(disk).empty());
        EXPECT_FALSE(fs::exists(target.string() + "-journal"));
    }
    EXPECT_EQ(SaveError(disk / "new.Atlavex"), ErrorNumber::DiskFull);
    EXPECT_FALSE(fs::exists(disk / "new.Atlavex"));
    const std::string expected = ContentOf(*library_);
    mounted.Resize("size=16m");
    EXPECT_EQ(SaveError(target), ErrorNumber{}) << sentence_;
    EXPECT_EQ(ContentOfFile(target), expected);
    library_.reset();
}

TEST_F(Targets, BeyondALimitOfFileSizesStayAsTheyAre) {
    const fs::path target = folder_ / "sheet.Atlavex";
    CopyFile(folder_ / "base.Atlavex", target);
    const std::string bytes = ReadWholeFile(target);
    for (const std::string operation : {"direct-add-map", "merge", "save-as", "rekey"}) {
        const bool needsImage = operation == "direct-add-map";
        const std::string argument = (folder_ / (needsImage ? "large.bmp" : "other.Atlavex")).string();
        if (operation == "merge")
            MakeLibrary(argument, 1, 900);
        else if (!needsImage)
            fs::remove(argument);
        // Blocks of 512 bytes: the library fits with little room, or (copied whole) not at all.
        const std::string blocks =
            std::to_string(static_cast<int>(bytes.size() / 512) +
                           (operation == "save-as" || operation == "rekey" ? -40 : 40));
        const ProgramResult result = RunProgram(
            {"sh", "-c", "trap '' XFSZ; ulimit -f " + blocks + "; FAULT_NEW_KEY=k exec \"$@\"", "sh",
             DriverProgram(), operation, (folder_ / "scratch").string(), target.string(), argument});
        EXPECT_EQ(result.status, 1) << operation << result.err;
        EXPECT_EQ(FirstError(result), static_cast<int>(ErrorNumber::DiskFull)) << operation << result.out;
        EXPECT_EQ(ReadWholeFile(target), bytes) << operation;
        EXPECT_TRUE(Temporaries(folder_.Path()).empty());
    }
}

TEST_F(Targets, OnAReadOnlyDiskAreReadAndNotWritten) {
    const fs::path disk = folder_ / "disk", target = disk / "sheet.Atlavex";
    const MountedDisk mounted(disk, "size=4m");
    CopyFile(folder_ / "base.Atlavex", target);
    mounted.MakeReadOnly();
    library_->LoadFromFile(target.string(), "");
    ASSERT_EQ(library_->MapCount(), 1);
    library_->GetMap(library_->MapIdAt(1))->SetMetadata("author", "Changed");
    EXPECT_EQ(SaveError(target), ErrorNumber::FileNotWritable) << sentence_;
    EXPECT_NE(sentence_.find(target.string()), std::string::npos) << sentence_;
    EXPECT_EQ(SaveError(target, TestKey), ErrorNumber::FileNotWritable) << sentence_;
    EXPECT_EQ(SaveError(disk / "new.Atlavex"), ErrorNumber::FileNotWritable) << sentence_;
    EXPECT_EQ(ContentOfFile(target), ContentOfFile(folder_ / "base.Atlavex"));
    EXPECT_EQ(SaveError(folder_ / "elsewhere.Atlavex"), ErrorNumber{}) << sentence_;
    library_.reset();
}

/// A file in the middle of a save, whose journal cannot be rolled back where nothing may be written.
TEST_F(Targets, LeftInTheMiddleOfASaveOnAReadOnlyDiskAreRefusedWithTheReason) {
    const fs::path disk = folder_ / "disk", target = disk / "sheet.Atlavex";
    const MountedDisk mounted(disk, "size=4m");
    CopyFile(folder_ / "base.Atlavex", target);
    // Killed when the journal is complete and the file half written.
    RunProgram({"strace", "-f", "-qq", "-o", "/dev/null", "-e", "inject=unlink:signal=SIGKILL:when=1",
                DriverProgram(), "set-metadata", (folder_ / "scratch").string(), target.string(), "x"});
    ASSERT_TRUE(fs::exists(target.string() + "-journal"));
    mounted.MakeReadOnly();
    EXPECT_EQ(LoadError(target), ErrorNumber::FileNotReadable) << sentence_;
    EXPECT_NE(sentence_.find("middle of a save"), std::string::npos) << sentence_;
    EXPECT_NE(sentence_.find("read-only"), std::string::npos) << sentence_;
}

TEST_F(Targets, InAMissingFolderAreRefused) {
    LoadBase();
    EXPECT_EQ(SaveError(folder_ / "missing" / "sheet.Atlavex"), ErrorNumber::FileNotWritable) << sentence_;
    EXPECT_EQ(LoadError(folder_ / "missing" / "sheet.Atlavex"), ErrorNumber::FileNotFound) << sentence_;
    EXPECT_FALSE(fs::exists(folder_ / "missing"));
}

TEST_F(Targets, BehindAFileInPlaceOfAFolderAreRefused) {
    LoadBase();
    WriteWholeFile(folder_ / "file", "x");
    EXPECT_EQ(SaveError(folder_ / "file" / "sheet.Atlavex"), ErrorNumber::FileNotWritable) << sentence_;
    EXPECT_NE(LoadError(folder_ / "file" / "sheet.Atlavex"), ErrorNumber{}) << sentence_;
    EXPECT_EQ(ReadWholeFile(folder_ / "file"), "x");
}

TEST_F(Targets, ThatAreFoldersDevicesOrPipesAreRefusedAndStay) {
    LoadBase();
    const fs::path folder = folder_ / "folder", device = folder_ / "device", pipe = folder_ / "pipe";
    fs::create_directory(folder);
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    std::vector<fs::path> targets = {folder, pipe};
    if (mknod(device.c_str(), S_IFCHR | 0600, makedev(1, 3)) == 0)
        targets.push_back(device);
    else
        targets.emplace_back("/dev/null"); // no such right: then it cannot be harmed either
    for (const fs::path& target : targets) {
        const fs::file_type type = fs::symlink_status(target).type();
        EXPECT_EQ(SaveError(target), ErrorNumber::FileNotWritable) << sentence_;
        EXPECT_EQ(fs::symlink_status(target).type(), type) << target;
        EXPECT_EQ(LoadError(target), ErrorNumber::FileNotReadable) << sentence_;
        EXPECT_THROW(library_->IsEncrypted(target.string()), ComponentError);
        EXPECT_THROW(library_->MergeFromFile(target.string(), ""), ComponentError);
        EXPECT_THROW(library_->AddMapFromImageFile(target.string(), "x", 256, 256), ComponentError);
        EXPECT_FALSE(fs::exists(target.string() + ".bak"));
    }
    EXPECT_TRUE(Temporaries(folder_.Path()).empty());
    EXPECT_EQ(library_->MapCount(), 1);
}

TEST_F(Targets, ThatAreLinksAreFollowed) {
    LoadBase();
    const std::string expected = ContentOf(*library_);
    const fs::path real = folder_ / "real.Atlavex", link = folder_ / "link.Atlavex";
    CopyFile(folder_ / "base.Atlavex", real);
    fs::create_symlink(real, link);
    EXPECT_EQ(SaveError(link, TestKey), ErrorNumber{}) << sentence_;
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(ContentOfFile(real, TestKey), expected);
}

TEST_F(Targets, ThatAreLinksToNothingGetTheFileThatTheyPromise) {
    LoadBase();
    const std::string expected = ContentOf(*library_);
    fs::create_directory(folder_ / "real");
    const fs::path link = folder_ / "link.Atlavex", real = folder_ / "real" / "new.Atlavex";
    fs::create_symlink("real/new.Atlavex", link);
    EXPECT_EQ(LoadError(link), ErrorNumber::FileNotFound) << sentence_;
    EXPECT_EQ(SaveError(link), ErrorNumber{}) << sentence_;
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(real)));
    EXPECT_EQ(ContentOfFile(real), expected);
    library_->GetMap(library_->MapIdAt(1))->SetMetadata("author", "Changed");
    EXPECT_EQ(SaveError(link), ErrorNumber{}) << "in place: " << sentence_;
    EXPECT_EQ(ContentOfFile(link), ContentOf(*library_));
    EXPECT_FALSE(fs::exists(real.string() + ".bak"));
}

TEST_F(Targets, ThatAreLinksInACircleAreRefusedAndStay) {
    LoadBase();
    const fs::path link = folder_ / "link.Atlavex";
    fs::create_symlink("link.Atlavex", link);
    EXPECT_EQ(SaveError(link), ErrorNumber::FileNotWritable) << sentence_;
    EXPECT_NE(sentence_.find(link.string() + "' could not be written: a link"), std::string::npos)
        << sentence_;
    EXPECT_NE(LoadError(link), ErrorNumber{}) << sentence_;
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_TRUE(Temporaries(folder_.Path()).empty());
}

TEST_F(Targets, WithTheLongestNamesAreSavedOrRefused) {
    LoadBase();
    const std::string expected = ContentOf(*library_);
    for (const std::size_t length : {200U, 246U, 247U, 248U, 255U, 256U, 300U}) {
        const fs::path target = folder_ / std::string(length, 'n');
        const ErrorNumber error = SaveError(target);
        if (error == ErrorNumber{}) {
            EXPECT_EQ(ContentOfFile(target), expected);
            library_->GetMap(library_->MapIdAt(1))->SetMetadata("author", "Someone");
            EXPECT_EQ(SaveError(target), ErrorNumber{}) << "in place: " << sentence_;
            LoadBase();
        } else {
            EXPECT_EQ(error, ErrorNumber::FileNotWritable) << sentence_;
            EXPECT_GT(length, 247U);
        }
    }
    EXPECT_TRUE(Temporaries(folder_.Path()).empty());
}
