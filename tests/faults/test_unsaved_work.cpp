// Programs that are killed while they work on a library: whatever the moment, what they had done is got back
// as it was before or after the step that was under way.

#include "component/Recovery.h"
#include "tests/faults/FaultLab.h"
#include "tests/faults/Killing.h"
#include "tests/support/ScopedVariable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>

namespace {

namespace fs = std::filesystem;

constexpr int KillsByClock = 12;
constexpr int KillsAtCalls = 25;

/// What the driver says after each of its steps.
std::vector<std::string> StepsIn(const fs::path& file) {
    std::istringstream text(fs::exists(file) ? ReadWholeFile(file) : "");
    std::vector<std::string> steps;
    for (std::string line; std::getline(text, line);)
        steps.push_back(line);
    return steps;
}

class UnsavedWorkAfterAKill : public testing::Test {
protected:
    UnsavedWorkAfterAKill() : cache_("XDG_CACHE_HOME", (folder_ / "cache").string()) {
        fs::create_directory(folder_ / "scratch");
        MakeNoiseImage(Image(), 300, 280, 7);
    }

    fs::path Image() const { return folder_ / "extra.bmp"; }
    fs::path File() const { return folder_ / "sheet.Atlavex"; }
    fs::path Steps() const { return folder_ / "steps"; }

    std::vector<std::string> Driver(const std::string& operation, const std::string& key) const {
        return {"env",           "FAULT_KEY=" + key, "FAULT_IMAGE=" + Image().string(),
                DriverProgram(), operation,          (folder_ / "scratch").string(),
                File().string(), Steps().string()};
    }

    void Prepare() const {
        fs::remove(Steps());
        for (const std::string& scratch : NamesIn(folder_ / "scratch", "", ""))
            fs::remove(folder_ / "scratch" / scratch);
    }

    /// The content that is got back; empty where nothing was left.
    std::string Recovered(const std::string& key) const {
        const std::vector<std::string> scratches = Scratches(folder_ / "scratch");
        std::vector<std::string> left;
        for (const std::string& name : scratches)
            if (!LookAtUnsavedWork((folder_ / "scratch" / name).string()).time.empty())
                left.push_back((folder_ / "scratch" / name).string());
        if (left.empty())
            return {};
        EXPECT_EQ(left.size(), 1U);
        const auto library = CreateAtlavexLibrary(CheapOptions((folder_ / "other").string()));
        const LoadedWork work = library->LoadUnsavedWork(left.front(), key, "");
        EXPECT_TRUE(library->KeyFitted());
        EXPECT_TRUE(work.missing.empty()) << work.missing.front();
        const std::string content = OneLine(ContentOf(*library));
        const fs::path fresh = folder_ / "fresh.Atlavex";
        fs::remove(fresh);
        library->SaveToFile(fresh.string(), key);
        EXPECT_EQ(OneLine(ContentOfFile(fresh, key)), content);
        return content;
    }

    void KillOften(const std::string& operation, const std::string& key, unsigned seed);

    TempFolder folder_;

private:
    ScopedVariable cache_;
};

void UnsavedWorkAfterAKill::KillOften(const std::string& operation, const std::string& key, unsigned seed) {
    const std::vector<std::string> command = Driver(operation, key);
    const auto duration = RunAndKill(command, std::chrono::minutes(1));
    const std::vector<std::string> all = StepsIn(Steps());
    ASSERT_GT(all.size(), 8U);
    Prepare();
    const std::vector<SystemCall> calls = TraceCalls(command, SavingCalls);
    ASSERT_GT(calls.size(), 20U);
    std::mt19937 random(seed);
    int recovered = 0;
    for (int i = 0; i < KillsByClock + KillsAtCalls; ++i) {
        Prepare();
        std::string moment;
        if (i < KillsByClock) {
            const auto after = duration * (random() % 1000) / 1000;
            RunAndKill(command, after);
            moment = std::to_string(after.count()) + " µs";
        } else {
            const SystemCall& call = calls[random() % calls.size()];
            RunAndKillAt(command, call);
            moment = call.name + " " + std::to_string(call.occurrence);
        }
        const std::size_t done = StepsIn(Steps()).size();
        const std::string content = Recovered(key);
        recovered += content.empty() ? 0 : 1;
        const auto isState = [&](std::size_t step) { return step < all.size() && all[step] == content; };
        // The first step loads or makes a library, and there is nothing unsaved.
        const bool isNothing = content.empty() && (done <= 1 || done == all.size());
        EXPECT_TRUE(isNothing || isState(done - 1) || isState(done)) << moment << " after step " << done;
    }
    EXPECT_GT(recovered, KillsAtCalls / 3);
}

} // namespace

TEST_F(UnsavedWorkAfterAKill, OnAFileIsAsItWasBeforeOrAfterTheStep) {
    MakeLibrary(File(), 2, 300);
    KillOften("edit", "", 1);
}

TEST_F(UnsavedWorkAfterAKill, OnASealedFileIsAsItWasBeforeOrAfterTheStep) {
    MakeLibrary(File(), 2, 300, TestKey);
    KillOften("edit", TestKey, 2);
}

TEST_F(UnsavedWorkAfterAKill, OnANewLibraryIsAsItWasBeforeOrAfterTheStep) {
    KillOften("edit-new", "", 3);
}

TEST_F(UnsavedWorkAfterAKill, OnASealedFileShowsNothingWithoutTheKey) {
    MakeLibrary(File(), 2, 300, TestKey);
    const auto duration = RunAndKill(Driver("edit", TestKey), std::chrono::minutes(1));
    static_cast<void>(duration);
    const std::size_t steps = StepsIn(Steps()).size();
    Prepare();
    const std::vector<SystemCall> calls = TraceCalls(Driver("edit", TestKey), "pwrite64");
    Prepare();
    ASSERT_TRUE(RunAndKillAt(Driver("edit", TestKey), calls[calls.size() * 9 / 10]));
    ASSERT_GT(StepsIn(Steps()).size(), 4U);
    ASSERT_LT(StepsIn(Steps()).size(), steps);
    const auto scratches = Scratches(folder_ / "scratch");
    ASSERT_EQ(scratches.size(), 1U);
    const std::string scratch = (folder_ / "scratch" / scratches[0]).string();
    EXPECT_TRUE(LookAtUnsavedWork(scratch).needsKey);
    for (const std::string& name : NamesIn(folder_ / "scratch", "", "")) {
        const std::string bytes = ReadWholeFile(folder_ / "scratch" / name);
        for (const char* const secret : {"Added first", "remarkable", "IHDR"})
            EXPECT_EQ(bytes.find(secret), std::string::npos) << name << " " << secret;
    }
    const auto library = CreateAtlavexLibrary(CheapOptions((folder_ / "other").string()));
    library->LoadUnsavedWork(scratch, "wrong", "");
    EXPECT_FALSE(library->KeyFitted());
    EXPECT_EQ(library->MapCount(), 0);
}

TEST_F(UnsavedWorkAfterAKill, IsSweptByNobodyAndFoundFromTheCacheFolder) {
    MakeLibrary(File(), 2, 300);
    const std::vector<SystemCall> calls = TraceCalls(Driver("edit", ""), "pwrite64");
    Prepare();
    ASSERT_TRUE(RunAndKillAt(Driver("edit", ""), calls[calls.size() * 9 / 10]));
    const auto before = Scratches(folder_ / "scratch");
    ASSERT_EQ(before.size(), 1U);
    // Another program works in the same folder and ends in good order.
    ASSERT_EQ(RunProgram(Driver("edit-new", "")).status, 0);
    EXPECT_EQ(Scratches(folder_ / "scratch"), before);
    const auto found = FindUnsavedWork();
    ASSERT_EQ(std::ranges::count(found, (folder_ / "scratch" / before[0]).string(), &UnsavedWork::scratch),
              1);
    DiscardUnsavedWork((folder_ / "scratch" / before[0]).string());
    EXPECT_TRUE(NamesIn(folder_ / "scratch", "", "").empty());
    EXPECT_TRUE(NamesIn(folder_ / "cache" / "quorvant-studio", "", "").empty())
        << "nothing leads there any more";
}
