// Journals that lie beside a library and are not its own: of the file that took its place, of another state
// of it, or made to harm. SQLite finds them by their names alone.

#include "base/ComponentError.h"
#include "tests/faults/FaultLab.h"

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;

std::string BigEndian(std::uint32_t number) {
    std::string bytes;
    for (unsigned shift = 32; shift > 0; shift -= 8)
        bytes += static_cast<char>(number >> (shift - 8));
    return bytes;
}

/// The end of a journal whose transaction went over several databases: it names the file that lists them.
std::string RecordNaming(const fs::path& file) {
    const std::string name = file.string();
    std::uint32_t sum = 0;
    for (const char letter : name)
        sum += static_cast<std::uint8_t>(letter);
    return BigEndian(0x40000000 / 8192 + 1) + name + BigEndian(static_cast<std::uint32_t>(name.size())) +
           BigEndian(sum) + "\xd9\xd5\x05\xf9\x20\xa1\x63\xd7";
}

class Journals : public testing::Test {
protected:
    void SetUp() override {
        fs::create_directory(folder_ / "scratch");
        MakeLibrary(file_, 2, 200);
        library_ = CreateAtlavexLibrary(CheapOptions((folder_ / "scratch").string()));
    }

    void Other(const std::string& operation, const std::string& argument = {}) const {
        const ProgramResult result = RunProgram(
            {DriverProgram(), operation, (folder_ / "scratch").string(), file_.string(), argument});
        ASSERT_EQ(result.status, 0) << result.out << result.err;
    }

    /// Another program is killed when the new state stands in the file and the journal is about to go.
    void KillInASave(const std::string& text) {
        RunProgram({"strace", "-f", "-qq", "-o", "/dev/null", "-e", "inject=unlink:signal=SIGKILL:when=1",
                    DriverProgram(), "set-metadata", (folder_ / "scratch").string(), file_.string(), text});
        ASSERT_TRUE(fs::exists(journal_));
    }

    ErrorNumber LoadError() {
        try {
            library_->LoadFromFile(file_.string(), "");
        } catch (const ComponentError& error) {
            sentence_ = error.Description();
            return error.Number();
        }
        return {};
    }

    void ExpectRefused() {
        const std::string bytes = ReadWholeFile(file_), journal = ReadWholeFile(journal_);
        EXPECT_EQ(LoadError(), ErrorNumber::FileDamaged) << sentence_;
        EXPECT_NE(sentence_.find(journal_.string()), std::string::npos) << sentence_;
        EXPECT_THROW(library_->IsEncrypted(file_.string()), ComponentError);
        const ProgramResult second = ReadBySecondReader(file_);
        EXPECT_EQ(second.status, 1);
        EXPECT_NE(second.err.find("the journal"), std::string::npos) << second.err;
        EXPECT_EQ(ReadWholeFile(file_), bytes);
        EXPECT_EQ(ReadWholeFile(journal_), journal);
    }

    TempFolder folder_;
    fs::path file_ = folder_ / "sheet.Atlavex";
    fs::path journal_ = folder_ / "sheet.Atlavex-journal";
    std::unique_ptr<AtlavexLibrary> library_;
    std::string sentence_;
};

} // namespace

TEST_F(Journals, OfAFileThatTookTheirFilesPlaceAreLeftAloneByOldReaders) {
    const std::string former = ContentOfFile(file_);
    library_->LoadFromFile(file_.string(), "");
    fs::create_hard_link(file_, folder_ / "kept.Atlavex");
    Other("compact");
    KillInASave("never finished");
    const std::string journal = ReadWholeFile(journal_);
    EXPECT_EQ(ContentOf(*library_), former) << "the old file can still be read";
    EXPECT_EQ(ReadWholeFile(journal_), journal);
    EXPECT_EQ(ContentOfFile(folder_ / "kept.Atlavex"), former);
    EXPECT_EQ(ContentOfFile(file_), former) << "and what was not finished is taken back in the new one";
}

TEST_F(Journals, OfAFileThatTookTheirFilesPlaceAreLeftAloneByWorkThatHadBegun) {
    LibraryOptions options = CheapOptions((folder_ / "scratch").string());
    options.newTiles = NewTiles::LibraryFile;
    library_ = CreateAtlavexLibrary(options);
    library_->LoadFromFile(file_.string(), "");
    MakeNoiseImage(folder_ / "extra.bmp", 300, 300, 3);
    library_->AddMapFromImageFile((folder_ / "extra.bmp").string(), "Added", 256, 256);
    ASSERT_TRUE(fs::exists(journal_));
    MakeLibrary(folder_ / "other.Atlavex", 1, 100);
    fs::rename(folder_ / "other.Atlavex", file_);
    WriteWholeFile(folder_ / "other-journal", "of the other file");
    fs::rename(folder_ / "other-journal", journal_);
    EXPECT_THROW(library_->SaveToFile(file_.string(), ""), ComponentError);
    library_.reset();
    EXPECT_EQ(ReadWholeFile(journal_), "of the other file");
}

TEST_F(Journals, ThatNameAThirdFileRemoveNothing) {
    const fs::path letter = folder_ / "letter.txt";
    WriteWholeFile(letter, "Dear all");
    KillInASave("never finished");
    WriteWholeFile(journal_, ReadWholeFile(journal_) + RecordNaming(letter));
    ExpectRefused();
    EXPECT_TRUE(fs::exists(letter));
    EXPECT_EQ(ReadWholeFile(letter), "Dear all");
}

TEST_F(Journals, ThatNameAThirdFileThatIsNotThereAreRefusedToo) {
    KillInASave("never finished");
    WriteWholeFile(journal_, ReadWholeFile(journal_) + RecordNaming(folder_ / "none"));
    ExpectRefused();
}

TEST_F(Journals, OfALaterStateAreNotRolledIntoABackup) {
    const std::string backup = ReadWholeFile(file_);
    Other("set-metadata", "a later state");
    KillInASave("never finished");
    WriteWholeFile(file_, backup);
    ExpectRefused();
    fs::remove(journal_); // as it was when the backup was made
    EXPECT_EQ(LoadError(), ErrorNumber{}) << sentence_;
}

TEST_F(Journals, OfALongerStateAreNotRolledIntoABackup) {
    const std::string backup = ReadWholeFile(file_);
    MakeNoiseImage(folder_ / "extra.bmp", 300, 300, 3);
    Other("add-map", (folder_ / "extra.bmp").string());
    KillInASave("never finished");
    WriteWholeFile(file_, backup);
    ExpectRefused();
}

TEST_F(Journals, OfAShorterStateAreNotRolledIntoABackup) {
    const std::string backup = ReadWholeFile(file_);
    Other("remove-map");
    Other("compact");
    KillInASave("never finished");
    ASSERT_LT(ReadWholeFile(file_).size(), backup.size());
    WriteWholeFile(file_, backup);
    ExpectRefused();
}

TEST_F(Journals, OfTheirOwnFileAreRolledBack) {
    const std::string former = ContentOfFile(file_);
    KillInASave("never finished");
    const std::string bytes = ReadWholeFile(file_), journal = ReadWholeFile(journal_);
    EXPECT_EQ(ReadBySecondReader(file_).status, 0);
    EXPECT_EQ(ReadWholeFile(file_), bytes);
    EXPECT_EQ(ReadWholeFile(journal_), journal);
    EXPECT_EQ(ContentOfFile(file_), former);
    EXPECT_FALSE(fs::exists(journal_));
}

TEST_F(Journals, BesideAnEmptyFileStay) {
    KillInASave("never finished");
    WriteWholeFile(file_, "");
    const std::string journal = ReadWholeFile(journal_);
    EXPECT_EQ(LoadError(), ErrorNumber::NotALibrary) << sentence_;
    EXPECT_EQ(ReadWholeFile(journal_), journal);
}

/// A log that came along with a file is not the file's: a library never has one.
TEST_F(Journals, OfTheOtherKindAreNotLookedAt) {
    const std::string former = ContentOfFile(file_);
    WriteWholeFile(file_.string() + "-wal", "something");
    EXPECT_EQ(ContentOfFile(file_), former);
    EXPECT_EQ(ReadWholeFile(file_.string() + "-wal"), "something");
}
