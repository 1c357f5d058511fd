// The steps by which a new file takes its place: their order, and what is left when each of them fails.

#include "base/ComponentError.h"
#include "tests/faults/FaultLab.h"
#include "tests/faults/RecordingFiles.h"

#include <gmock/gmock.h>

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

/// A library in memory that was loaded from a small file and has a change that is not saved yet.
class FileSteps : public testing::Test {
protected:
    void SetUp() override {
        fs::create_directory(folder_ / "scratch");
        MakeLibrary(Own(), 1, 300);
        MakeLibrary(Foreign(), 1, 200);
        foreignBytes_ = ReadWholeFile(Foreign());
        Load();
    }

    void Load() {
        files_ = std::make_shared<RecordingFiles>();
        LibraryOptions options = CheapOptions((folder_ / "scratch").string());
        options.files = files_;
        library_ = CreateAtlavexLibrary(options);
        library_->LoadFromFile(Own().string(), "");
        library_->GetMap(library_->MapIdAt(1))->SetMetadata("remark", "changed");
        expected_ = ContentOf(*library_);
    }

    fs::path Own() const { return folder_ / "own.Atlavex"; }
    fs::path Foreign() const { return folder_ / "foreign.Atlavex"; }
    fs::path Backup(const std::string& ending) const { return Foreign().string() + ending; }

    TempFolder folder_;
    std::shared_ptr<RecordingFiles> files_;
    std::unique_ptr<AtlavexLibrary> library_;
    std::string expected_;
    std::string foreignBytes_;
};

} // namespace

TEST_F(FileSteps, SyncTheContentBeforeTheNameAndTheFolderAfterIt) {
    library_->SaveToFile((folder_ / "new.Atlavex").string(), "");
    EXPECT_THAT(files_->steps, ElementsAre("create", "sync", "rights", "replace new.Atlavex", "sync folder"));
}

TEST_F(FileSteps, KeepAFormerFileBeforeItIsReplaced) {
    library_->SaveToFile(Foreign().string(), "");
    EXPECT_THAT(files_->steps, ElementsAre("create", "sync", "rights", "name foreign.Atlavex.bak",
                                           "replace foreign.Atlavex", "sync folder"));
    EXPECT_EQ(ReadWholeFile(Backup(".bak")), foreignBytes_);
    EXPECT_EQ(ContentOfFile(Foreign()), expected_);
}

TEST_F(FileSteps, NeverOverwriteABackup) {
    WriteWholeFile(Backup(".bak"), "first");
    WriteWholeFile(Backup(".bak2"), "second");
    library_->SaveToFile(Foreign().string(), "");
    EXPECT_EQ(ReadWholeFile(Backup(".bak")), "first");
    EXPECT_EQ(ReadWholeFile(Backup(".bak2")), "second");
    EXPECT_EQ(ReadWholeFile(Backup(".bak3")), foreignBytes_);
}

TEST_F(FileSteps, MakeNoBackupOfTheFileThatWasLoaded) {
    library_->SaveToFile(Own().string(), TestKey);
    EXPECT_THAT(files_->steps, ElementsAre("create", "sync", "rights", "replace own.Atlavex", "sync folder"));
    EXPECT_EQ(ContentOfFile(Own(), TestKey), expected_);
}

TEST_F(FileSteps, AreNotTakenByASaveInPlace) {
    library_->SaveToFile(Own().string(), "");
    EXPECT_TRUE(files_->steps.empty());
    EXPECT_EQ(ContentOfFile(Own()), expected_);
}

TEST_F(FileSteps, LeaveAForeignFileOrTheNewOneWhicheverFails) {
    constexpr int Steps = 6; // as listed above
    for (int step = 0; step < Steps; ++step) {
        SCOPED_TRACE(step);
        WriteWholeFile(Foreign(), foreignBytes_);
        fs::remove(Backup(".bak"));
        Load();
        files_->failing = step;
        EXPECT_THROW(library_->SaveToFile(Foreign().string(), ""), ComponentError);
        EXPECT_EQ(files_->steps.size(), static_cast<std::size_t>(step) + 1);
        EXPECT_TRUE(Temporaries(folder_.Path()).empty());
        const bool placed = step == Steps - 1;
        if (placed)
            EXPECT_EQ(ContentOfFile(Foreign()), expected_);
        else
            EXPECT_EQ(ReadWholeFile(Foreign()), foreignBytes_);
        EXPECT_EQ(fs::exists(Backup(".bak")), placed) << "a second name would change with the file";
        EXPECT_EQ(ContentOf(*library_), expected_) << "the library in memory";
        library_->SaveToFile(Foreign().string(), "");
        EXPECT_EQ(ContentOfFile(Foreign()), expected_);
    }
}

TEST_F(FileSteps, LeaveThePlainOrTheSealedFileWhicheverFails) {
    constexpr int Steps = 5;
    const std::string plainBytes = ReadWholeFile(Own());
    for (int step = 0; step < Steps; ++step) {
        SCOPED_TRACE(step);
        library_.reset();
        WriteWholeFile(Own(), plainBytes);
        Load();
        files_->failing = step;
        EXPECT_THROW(library_->SaveToFile(Own().string(), TestKey), ComponentError);
        EXPECT_TRUE(Temporaries(folder_.Path()).empty());
        if (step == Steps - 1)
            EXPECT_EQ(ContentOfFile(Own(), TestKey), expected_);
        else
            EXPECT_EQ(ReadWholeFile(Own()), plainBytes);
        EXPECT_EQ(ContentOf(*library_), expected_) << "the library in memory";
        library_->SaveToFile(Own().string(), TestKey);
        EXPECT_EQ(ContentOfFile(Own(), TestKey), expected_);
        EXPECT_EQ(ContentOfFile(Own()), "wrong key");
        EXPECT_FALSE(fs::exists(Own().string() + ".bak"));
    }
}

TEST_F(FileSteps, LeaveNothingOfAScratchThatCannotBeMadeAndMakeItElsewhere) {
    files_->failing = 0;
    const fs::path image = folder_ / "sheet.bmp";
    MakeNoiseImage(image, 100, 100, 1);
    library_->AddMapFromImageFile(image.string(), "Sheet", 256, 256);
    EXPECT_TRUE(Scratches(folder_ / "scratch").empty());
    EXPECT_EQ(library_->MapCount(), 2);
}

/// The transaction in which new tiles stand has a journal of its own, which must not be taken for another's.
TEST_F(FileSteps, PutANewKeyOnTilesThatWereAddedDirectly) {
    const fs::path image = folder_ / "sheet.bmp";
    MakeNoiseImage(image, 900, 900, 1);
    library_.reset();
    LibraryOptions options = CheapOptions((folder_ / "scratch").string());
    options.newTiles = NewTiles::LibraryFile;
    library_ = CreateAtlavexLibrary(options);
    library_->LoadFromFile(Own().string(), "");
    library_->AddMapFromImageFile(image.string(), "Sheet", 256, 256);
    const std::string expected = ContentOf(*library_);
    library_->SaveToFile(Own().string(), TestKey);
    EXPECT_EQ(ContentOfFile(Own(), TestKey), expected);
    EXPECT_FALSE(fs::exists(Own().string() + "-journal"));
    EXPECT_EQ(ContentOf(*library_), expected);
}

/// Whoever waits for its turn has it at once when a new file is in its place, before its maker opens it
/// there.
TEST_F(FileSteps, AreDoneThoughAnotherProgramSavesBeforeTheNewFileIsOpened) {
    const auto change = [this](const std::string& value) {
        const auto other = CreateAtlavexLibrary(CheapOptions((folder_ / "scratch").string()));
        other->LoadFromFile(Own().string(), "");
        other->GetMap(other->MapIdAt(1))->SetMetadata("remark", value);
        other->SaveToFile(Own().string(), "");
        return ContentOf(*other);
    };
    std::string theirs;
    files_->placed = [&] { theirs = change("theirs"); };
    library_->Compact();
    ASSERT_FALSE(theirs.empty());
    EXPECT_EQ(ContentOfFile(Own()), theirs);
    EXPECT_EQ(ContentOf(*library_), expected_);
    files_->placed = [] {};
    try {
        library_->SaveToFile(Own().string(), "");
        FAIL() << "what the other program saved is overwritten";
    } catch (const ComponentError& error) {
        EXPECT_EQ(error.Number(), ErrorNumber::FileChanged);
    }
    EXPECT_EQ(ContentOfFile(Own()), theirs);
    library_->SaveToFile((folder_ / "elsewhere.Atlavex").string(), "");
    EXPECT_EQ(ContentOfFile(folder_ / "elsewhere.Atlavex"), expected_);
}
