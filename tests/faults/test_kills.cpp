// Programs that are killed in the middle of a save: whatever the moment, the next one to open the library
// finds wholly the old or wholly the new content.

#include "tests/faults/FaultLab.h"
#include "tests/faults/Killing.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace {

namespace fs = std::filesystem;

constexpr int KillsByClock = 34;
constexpr int KillsAtCalls = 33;

/// What stands at a path: nothing, or whether it is sealed and all that it shows.
std::string StateOf(const fs::path& file) {
    if (!fs::exists(file))
        return "nothing";
    const auto library = CreateAtlavexLibrary();
    const bool sealed = library->IsEncrypted(file.string());
    return (sealed ? "sealed, " : "plain, ") + ContentOfFile(file, TestKey);
}

/// A library of 50 MB that nothing can compress, made once for all tests of this program.
class Kills : public testing::Test {
protected:
    static void SetUpTestSuite() {
        common_ = std::make_unique<TempFolder>();
        MakeLibrary(*common_ / "base.Atlavex", 3, 2048);
        MakeNoiseImage(*common_ / "extra.bmp", 700, 700, 7);
    }
    static void TearDownTestSuite() { common_.reset(); }

    fs::path Base() const { return *common_ / "base.Atlavex"; }
    fs::path Target() const { return folder_ / "sheet.Atlavex"; }

    std::vector<std::string> Driver(const std::string& operation, const fs::path& argument = {}) const {
        return {"env",
                "FAULT_NEW_KEY=" + TestKey,
                DriverProgram(),
                operation,
                fs::path(folder_ / "scratch").string(),
                Target().string(),
                argument.string()};
    }

    /// Begins each run with what stood there before.
    void Prepare(bool withTarget) {
        fs::remove(Target());
        fs::remove(Target().string() + "-journal");
        if (withTarget)
            CopyFile(Base(), Target());
    }

    static void KillAt(const std::vector<std::string>& command, const SystemCall& call) {
        ASSERT_TRUE(RunAndKillAt(command, call)) << call.name << ' ' << call.occurrence << " was not met";
    }

    void KillOftenDuring(const std::vector<std::string>& command, bool withTarget, unsigned seed);

    TempFolder folder_;

private:
    static inline std::unique_ptr<TempFolder> common_;
};

void Kills::KillOftenDuring(const std::vector<std::string>& command, bool withTarget, unsigned seed) {
    fs::create_directory(folder_ / "scratch");
    Prepare(withTarget);
    const std::string old = StateOf(Target());
    const auto duration = RunAndKill(command, std::chrono::minutes(1));
    const std::string fresh = StateOf(Target());
    ASSERT_NE(old, fresh);
    ASSERT_EQ(fresh.find("error"), std::string::npos) << fresh;
    Prepare(withTarget);
    const std::vector<SystemCall> calls = TraceCalls(command, SavingCalls);
    ASSERT_GT(calls.size(), 20U);

    std::mt19937 random(seed);
    std::map<std::string, int> seen;
    int hits = 0;
    for (int i = 0; i < KillsByClock + KillsAtCalls; ++i) {
        Prepare(withTarget);
        std::string moment;
        if (i < KillsByClock) {
            // A little longer than a whole run takes, so that the very end is met too.
            const auto after = duration * (random() % 1100) / 1000;
            RunAndKill(command, after);
            moment = std::to_string(after.count()) + " µs";
        } else {
            // One of the last calls, or any: what matters most happens at the end.
            const std::size_t back = random() % (i % 3 == 0 ? calls.size() : 30);
            const SystemCall& call = calls[calls.size() - 1 - back];
            hits += RunAndKillAt(command, call) ? 1 : 0;
            moment = call.name + " " + std::to_string(call.occurrence);
        }
        const std::string now = StateOf(Target());
        ASSERT_TRUE(now == old || now == fresh) << "killed at " << moment << ": " << now;
        ++seen[now];
    }
    EXPECT_GT(hits, KillsAtCalls / 2);
    EXPECT_EQ(seen.size(), 2U) << "only one of the two outcomes was met";
    for (const auto& [state, times] : seen)
        RecordProperty(state == old ? "old" : "new", times);
}

} // namespace

TEST_F(Kills, DuringASaveInPlaceLeaveTheOldOrTheNewMap) {
    KillOftenDuring(Driver("add-map", Base().parent_path() / "extra.bmp"), true, 1);
}

TEST_F(Kills, DuringAFirstSaveLeaveNothingOrTheWholeLibrary) {
    KillOftenDuring(Driver("first-save", Base()), false, 2);
}

TEST_F(Kills, DuringAChangeOfKeyLeaveThePlainOrTheSealedLibrary) {
    KillOftenDuring(Driver("rekey"), true, 3);
}

TEST_F(Kills, LeaveATemporaryThatTheNextSaveSweepsEvenOneInPlace) {
    fs::create_directory(folder_ / "scratch");
    Prepare(true);
    KillAt(Driver("rekey"), {"rename", 1});
    ASSERT_EQ(Temporaries(folder_.Path()).size(), 1U);
    const ProgramResult saved = RunProgram(Driver("set-metadata", "checked"));
    EXPECT_EQ(saved.status, 0) << saved.out;
    EXPECT_TRUE(Temporaries(folder_.Path()).empty());
}

TEST_F(Kills, WhileANewFileIsFilledLeaveNothingThatIsNotSwept) {
    fs::create_directory(folder_ / "scratch");
    Prepare(true);
    KillAt(Driver("rekey"), {"pwrite64", 100});
    ASSERT_EQ(Temporaries(folder_.Path()).size(), 1U) << "the temporary has no journal beside it";
    ASSERT_EQ(RunProgram(Driver("set-metadata", "checked")).status, 0);
    EXPECT_TRUE(Temporaries(folder_.Path()).empty());
}

TEST_F(Kills, LeaveAScratchThatTheNextImportSweeps) {
    fs::create_directory(folder_ / "scratch");
    Prepare(true);
    KillAt(Driver("add-map", Base().parent_path() / "extra.bmp"), {"fdatasync", 1});
    ASSERT_EQ(Scratches(folder_ / "scratch").size(), 1U);
    const ProgramResult added = RunProgram(Driver("add-map", Base().parent_path() / "extra.bmp"));
    EXPECT_EQ(added.status, 0) << added.out;
    EXPECT_TRUE(Scratches(folder_ / "scratch").empty());
}

/// A journal whose head was never synced is not rolled back, and SQLite leaves it lying about.
TEST_F(Kills, BeforeTheJournalIsSyncedDoNotStandInTheWayOfANewKey) {
    fs::create_directory(folder_ / "scratch");
    Prepare(true);
    KillAt(Driver("set-metadata", "never written"), {"fdatasync", 1});
    ASSERT_TRUE(fs::exists(Target().string() + "-journal"));
    const ProgramResult saved = RunProgram(Driver("rekey"));
    EXPECT_EQ(saved.status, 0) << saved.out;
    EXPECT_EQ(StateOf(Target()).substr(0, 7), "sealed,");
}
