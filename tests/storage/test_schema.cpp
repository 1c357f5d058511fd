// What is taken for a library: the first bytes and the tables, and every other thing refused.

#include "base/ComponentError.h"
#include "component/storage/LibraryFile.h"
#include "component/storage/Saving.h"
#include "component/storage/Schema.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <sqlite3.h>

namespace {

class OpeningLibraries : public testing::Test {
protected:
    OpeningLibraries() {
        Progress progress;
        NumberSource numbers;
        const LibraryState nothing;
        NewFileSave save(SystemFiles(), {file_, Envelope::Plain(), 0}, nothing, numbers, progress);
        save.Begin();
        save.Fill();
        save.Check();
        save.Place(FileReplacement::Former::Kept, {});
        whole_ = ReadWholeFile(file_);
    }

    /// Runs SQL on the file as any program could, with no protection.
    void Tamper(const std::string& sql) const {
        sqlite3* handle = nullptr;
        ASSERT_EQ(sqlite3_open(file_.c_str(), &handle), SQLITE_OK);
        char* message = nullptr;
        EXPECT_EQ(sqlite3_exec(handle, sql.c_str(), nullptr, nullptr, &message), SQLITE_OK) << message;
        sqlite3_free(message);
        EXPECT_EQ(sqlite3_close(handle), SQLITE_OK);
    }
    void Patch(std::size_t at, const std::string& bytes) const {
        std::string changed = whole_;
        changed.replace(at, bytes.size(), bytes);
        WriteWholeFile(file_, changed);
    }
    struct Refusal {
        int code = 0;
        std::string description;
    };
    Refusal Open() const {
        try {
            const auto opened = LibraryFile::Open(file_, "", file_.string());
            opened->ReadState();
        } catch (const ComponentError& error) {
            EXPECT_NE(error.Description().find(file_.string()), std::string::npos) << error.Description();
            return {error.Code(), error.Description()};
        }
        return {};
    }
    void ExpectRefused(ErrorNumber number) const {
        const Refusal refusal = Open();
        EXPECT_EQ(refusal.code, static_cast<int>(number)) << refusal.description;
    }

    TempFolder folder_;
    std::filesystem::path file_ = folder_ / "lib.Atlavex";
    std::string whole_;
};

} // namespace

TEST_F(OpeningLibraries, AcceptsWhatWasWritten) {
    EXPECT_EQ(Open().code, 0);
}

TEST_F(OpeningLibraries, RefusesAnythingBesideOurTables) {
    for (const char* sql :
         {"CREATE TABLE more(x)", "CREATE VIEW v AS SELECT * FROM map", "CREATE INDEX i ON map(record)",
          "CREATE TRIGGER t AFTER INSERT ON map BEGIN DELETE FROM icon; END",
          "CREATE VIRTUAL TABLE f USING fts5(x)", "DROP TABLE tile_index", "ALTER TABLE blob RENAME TO blobs",
          "ALTER TABLE blob ADD COLUMN more", "ANALYZE"}) {
        SCOPED_TRACE(sql);
        WriteWholeFile(file_, whole_);
        Tamper(sql);
        ExpectRefused(ErrorNumber::FileDamaged);
    }
}

TEST_F(OpeningLibraries, RefusesATableWhoseTextDiffersByAByte) {
    const std::size_t at = whole_.find("CREATE TABLE map(id INTEGER PRIMARY KEY");
    ASSERT_NE(at, std::string::npos);
    for (const auto& [offset, bytes] :
         {std::pair{std::size_t{0}, "create"}, {std::size_t{16}, "[id]INTEGER  PRIMARY"}}) {
        Patch(at + offset, bytes);
        ExpectRefused(ErrorNumber::FileDamaged);
    }
}

TEST_F(OpeningLibraries, RefusesAWriteAheadLog) {
    Patch(18, "\2");
    ExpectRefused(ErrorNumber::FileDamaged);
    Patch(19, "\2");
    ExpectRefused(ErrorNumber::FileDamaged);
    EXPECT_FALSE(std::filesystem::exists(file_.string() + "-wal"));
}

TEST_F(OpeningLibraries, RefusesOtherDatabasesAndFiles) {
    Tamper("PRAGMA application_id = 1");
    ExpectRefused(ErrorNumber::NotALibrary);
    std::filesystem::remove(file_);
    Tamper("CREATE TABLE t(x); INSERT INTO t VALUES(1)");
    ExpectRefused(ErrorNumber::NotALibrary);
    for (const std::string& content : {std::string("text"), std::string(), std::string(100000, '\0'),
                                       std::string("SQLite format 4\0", 16)}) {
        WriteWholeFile(file_, content);
        ExpectRefused(ErrorNumber::NotALibrary);
    }
}

TEST_F(OpeningLibraries, RefusesANewerVersionByItsNumber) {
    Tamper("PRAGMA user_version = 3");
    Refusal refusal = Open();
    EXPECT_EQ(refusal.code, static_cast<int>(ErrorNumber::NewerVersion));
    EXPECT_NE(refusal.description.find("version 3; this program reads versions up to 2."), std::string::npos)
        << refusal.description;
    Tamper("PRAGMA user_version = 2147483647");
    refusal = Open();
    EXPECT_EQ(refusal.code, static_cast<int>(ErrorNumber::NewerVersion));
    EXPECT_NE(refusal.description.find("2147483647"), std::string::npos) << refusal.description;
    Tamper("PRAGMA user_version = 0");
    ExpectRefused(ErrorNumber::FileDamaged);
}

TEST_F(OpeningLibraries, TellsANewerVersionEvenWhenItsTablesDiffer) {
    Tamper("CREATE TABLE more(x); PRAGMA user_version = 3");
    ExpectRefused(ErrorNumber::NewerVersion);
}

TEST_F(OpeningLibraries, RefusesAFileThatIsCutOrLengthened) {
    for (const std::size_t length :
         {std::size_t{100}, std::size_t{8191}, std::size_t{8192}, whole_.size() - 8192, whole_.size() - 1}) {
        SCOPED_TRACE(length);
        WriteWholeFile(file_, whole_.substr(0, length));
        ExpectRefused(ErrorNumber::FileDamaged);
    }
    WriteWholeFile(file_, whole_ + std::string(8192, '\0'));
    ExpectRefused(ErrorNumber::FileDamaged);
}

TEST_F(OpeningLibraries, RefusesAFileTooShortToSayWhatItIs) {
    for (const unsigned length : {1U, 15U, 16U, 50U, 99U}) {
        WriteWholeFile(file_, whole_.substr(0, length));
        const int code = Open().code;
        EXPECT_TRUE(code == static_cast<int>(ErrorNumber::FileDamaged) ||
                    code == static_cast<int>(ErrorNumber::NotALibrary))
            << length;
    }
}

TEST_F(OpeningLibraries, RefusesAnotherPageSize) {
    Tamper("PRAGMA page_size = 4096; VACUUM");
    ExpectRefused(ErrorNumber::FileDamaged);
}

TEST_F(OpeningLibraries, RefusesValuesOfTheWrongType) {
    for (const char* sql :
         {"UPDATE library SET header = CAST(header AS TEXT)", "UPDATE library SET mac = 'text'",
          "UPDATE library SET mac = 5", "INSERT INTO map VALUES(1, 'a text')",
          "INSERT INTO metadata VALUES(1, 17)", "INSERT INTO icon VALUES(1, 1.5)"}) {
        SCOPED_TRACE(sql);
        WriteWholeFile(file_, whole_);
        Tamper(sql);
        ExpectRefused(ErrorNumber::FileDamaged);
    }
}

TEST_F(OpeningLibraries, RefusesHeadersThatAreMissingDoubledOrChanged) {
    for (const char* sql :
         {"DELETE FROM library", "INSERT INTO library SELECT 2, header, mac FROM library",
          "UPDATE library SET id = 2", "UPDATE library SET header = CAST(header || x'00' AS BLOB)",
          "UPDATE library SET mac = zeroblob(32)", "UPDATE library SET mac = zeroblob(31)",
          "UPDATE library SET header = zeroblob(184)", "UPDATE library SET header = zeroblob(0)"}) {
        SCOPED_TRACE(sql);
        WriteWholeFile(file_, whole_);
        Tamper(sql);
        ExpectRefused(ErrorNumber::FileDamaged);
    }
}

TEST_F(OpeningLibraries, RefusesRecordsOutsideTheTree) {
    for (const char* sql :
         {"INSERT INTO map VALUES(1, x'01')", "INSERT INTO metadata VALUES(1, x'0100000000')"}) {
        SCOPED_TRACE(sql);
        WriteWholeFile(file_, whole_);
        Tamper(sql);
        ExpectRefused(ErrorNumber::FileDamaged);
    }
}
