// Memory that runs out anywhere in a load, an import or a save: an orderly end, and the file as it was.

#include "base/ComponentError.h"
#include "tests/faults/FaultLab.h"

#include <gtest/gtest.h>

#include <random>

namespace {

namespace fs = std::filesystem;

/// Allocations that are made to fail for each operation, besides the program's own start.
constexpr int Tries = 120;

class Memory : public testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        fs::create_directory(folder_ / "scratch");
        MakeLibrary(folder_ / "base.Atlavex", 1, 200);
        MakeNoiseImage(folder_ / "extra.bmp", 150, 150, 3);
    }

    ProgramResult Run(const std::string& operation, const std::string& variable) {
        CopyFile(folder_ / "base.Atlavex", file_);
        return RunWith({"LD_PRELOAD=" FAILING_MALLOC, variable, "FAULT_NEW_KEY=" + TestKey},
                       {DriverProgram(), operation, (folder_ / "scratch").string(), file_.string(),
                        (folder_ / "extra.bmp").string()});
    }

    long CountAllocations(const std::string& operation) {
        const fs::path count = folder_ / "count";
        const ProgramResult result = Run(operation, "FAIL_COUNT=" + count.string());
        EXPECT_EQ(result.status, 0) << result.out << result.err;
        return std::stol(ReadWholeFile(count));
    }

    TempFolder folder_;
    fs::path file_ = folder_ / "sheet.Atlavex";
};

} // namespace

TEST_P(Memory, ThatRunsOutEndsTheOperationInGoodOrder) {
    const std::string operation = GetParam();
    const long count = CountAllocations(operation);
    const std::string old = ContentOfFile(folder_ / "base.Atlavex", TestKey);
    const std::string fresh = ContentOfFile(file_, TestKey);
    // What happens before main is not ours.
    const ProgramResult nothing = Run("no such operation", "FAIL_COUNT=" + (folder_ / "start").string());
    ASSERT_NE(nothing.status, 0);
    const long start = std::stol(ReadWholeFile(folder_ / "start"));
    ASSERT_GT(count, start + Tries);
    std::mt19937 random(1);
    int refusals = 0;
    for (int i = 0; i < Tries; ++i) {
        const long at = start + static_cast<long>(random() % static_cast<unsigned long>(count - start));
        const ProgramResult result = Run(operation, "FAIL_AT=" + std::to_string(at));
        ASSERT_LE(result.status, 2) << "allocation " << at << " of " << count << ": " << result.out
                                    << result.err;
        refusals += result.status != 0 ? 1 : 0;
        const std::string content = ContentOfFile(file_, TestKey);
        ASSERT_TRUE(content == old || content == fresh) << "allocation " << at << ": " << content;
        ASSERT_TRUE(result.status != 0 || content == fresh) << "allocation " << at;
        ASSERT_TRUE(Temporaries(folder_.Path()).empty()) << "allocation " << at;
        ASSERT_TRUE(Scratches(folder_ / "scratch").empty()) << "allocation " << at;
    }
    EXPECT_GT(refusals, Tries / 2);
}

INSTANTIATE_TEST_SUITE_P(ForOperations, Memory, testing::Values("read", "set-metadata", "add-map", "rekey"),
                         [](const testing::TestParamInfo<std::string>& operation) {
                             std::string name = operation.param;
                             std::erase(name, '-');
                             return name;
                         });
