// Every call of the operating system that a save makes fails once, in turn: the old file stays bit for bit or
// the new one is whole, and the error says what happened.

#include "base/ComponentError.h"
#include "tests/faults/FaultLab.h"
#include "tests/faults/Killing.h"

#include <gtest/gtest.h>

#include <set>

namespace {

namespace fs = std::filesystem;

/// Most occurrences of one call that are tried; of more, as many are taken evenly.
constexpr std::size_t MostTries = 24;

/// A save, and where its calls go.
struct Scenario {
    const char* operation;
    bool argumentIsTarget = false; ///< else the file is
};

constexpr Scenario Scenarios[] = {
    {"set-metadata"}, {"remove-map"}, {"first-save"}, {"rekey"}, {"compact"}, {"save-as", true},
};

/// What is done to a call, and the error that must come of it: any of these numbers, or none at all when the
/// save need not notice.
struct Fault {
    const char* call;
    const char* tampering;
    std::set<ErrorNumber> errors;
};

void PrintTo(const Scenario& scenario, std::ostream* out) {
    *out << scenario.operation;
}

std::string NameOf(const testing::TestParamInfo<Scenario>& scenario) {
    std::string name = scenario.param.operation;
    std::erase(name, '-');
    return name;
}

class SystemCalls : public testing::TestWithParam<Scenario> {
protected:
    static void SetUpTestSuite() {
        common_ = std::make_unique<TempFolder>();
        MakeLibrary(*common_ / "base.Atlavex", 2, 200);
        MakeLibrary(*common_ / "foreign.Atlavex", 1, 100);
    }
    static void TearDownTestSuite() { common_.reset(); }

    fs::path Target() const { return GetParam().argumentIsTarget ? folder_ / "other.Atlavex" : Source(); }
    fs::path Source() const { return folder_ / "sheet.Atlavex"; }

    std::vector<std::string> Command() const {
        const std::string operation = GetParam().operation;
        const fs::path argument = operation == "first-save" ? *common_ / "base.Atlavex"
                                  : operation == "save-as"  ? folder_ / "other.Atlavex"
                                                            : fs::path("checked");
        return {"env",
                "FAULT_NEW_KEY=" + std::string(operation == "rekey" ? TestKey : ""),
                DriverProgram(),

                operation,
                (folder_ / "scratch").string(),
                Source().string(),
                argument.string()};
    }

    void Prepare() {
        for (const fs::directory_entry& entry : fs::directory_iterator(folder_.Path()))
            fs::remove_all(entry.path());
        fs::create_directory(folder_ / "scratch");
        if (std::string(GetParam().operation) != "first-save")
            CopyFile(*common_ / "base.Atlavex", Source());
        if (GetParam().argumentIsTarget)
            CopyFile(*common_ / "foreign.Atlavex", Target());
        oldBytes_ = fs::exists(Target()) ? ReadWholeFile(Target()) : std::string();
    }

    /// The content that the save is to bring about, and the calls in this folder that it takes.
    void Measure() {
        Prepare();
        old_ = ContentOfFile(Target(), TestKey);
        calls_ = TraceCalls(Command(), SavingCalls);
        fresh_ = ContentOfFile(Target(), TestKey);
        ASSERT_EQ(fresh_.find("error"), std::string::npos) << fresh_;
    }

    std::vector<SystemCall> CallsOf(const std::string& name) const {
        std::vector<SystemCall> found;
        std::set<int> occurrences; // the same count in two threads is one try
        for (const SystemCall& call : calls_)
            if (call.name == name && call.text.find(folder_.Path().string()) != std::string::npos &&
                call.text.find("/scratch") == std::string::npos && occurrences.insert(call.occurrence).second)
                found.push_back(call);
        if (found.size() <= MostTries)
            return found;
        std::vector<SystemCall> sample;
        for (std::size_t i = 0; i < MostTries; ++i)
            sample.push_back(found[i * found.size() / MostTries]);
        return sample;
    }

    void FailOnce(const Fault& fault, const SystemCall& call) {
        SCOPED_TRACE(std::string(fault.call) + " " + std::to_string(call.occurrence) + " " + fault.tampering +
                     call.text);
        Prepare();
        const ProgramResult result = RunTampered(
            Command(), fault.call, std::string(fault.tampering) + ":when=" + std::to_string(call.occurrence));
        const int error = FirstError(result);
        EXPECT_TRUE(error == 0 || fault.errors.contains(static_cast<ErrorNumber>(error))) << result.out;
        failures_ += error != 0 ? 1 : 0;
        EXPECT_TRUE(Temporaries(folder_.Path()).empty());
        EXPECT_EQ(result.status, error != 0 ? 1 : 0) << result.out << result.err;
        const bool untouched =
            fs::exists(Target()) ? ReadWholeFile(Target()) == oldBytes_ : oldBytes_.empty();
        if (error != 0 && untouched && !fs::exists(Target().string() + "-journal"))
            return;
        // A journal that could not be removed brings the old content back; a folder that could not be synced
        // comes after the new file is in place.
        const std::string content = ContentOfFile(Target(), TestKey);
        EXPECT_TRUE(content == fresh_ || (error != 0 && content == old_)) << content << result.out;
    }

    TempFolder folder_;
    std::string oldBytes_;
    std::string old_;
    std::string fresh_;
    std::vector<SystemCall> calls_;
    int failures_ = 0;

private:
    static inline std::unique_ptr<TempFolder> common_;
};

} // namespace

TEST_P(SystemCalls, FailOnceEachWithoutHarm) {
    ASSERT_NO_FATAL_FAILURE(Measure());
    using enum ErrorNumber;
    const Fault faults[] = {
        {"pwrite64", "error=ENOSPC", {DiskFull}},
        {"pwrite64", "error=EDQUOT", {DiskFull, FileNotWritable}},
        {"pwrite64", "error=EIO", {FileNotWritable}},
        {"pwrite64", "retval=0", {DiskFull}},
        {"fsync", "error=EIO", {FileNotWritable}},
        {"fdatasync", "error=EIO", {FileNotWritable}},
        {"ftruncate", "error=EIO", {FileNotWritable}},
        {"rename", "error=EACCES", {FileNotWritable}},
        {"rename", "error=EROFS", {FileNotWritable}},
        {"link", "error=EACCES", {FileNotWritable}},
        {"unlink", "error=EACCES", {FileNotWritable}},
        {"fchmod", "error=EPERM", {FileNotWritable}},
        {"openat", "error=EACCES", {FileNotWritable, FileNotReadable}},
        {"openat", "error=EMFILE", {FileNotWritable, FileNotReadable}},
    };
    int tries = 0;
    for (const Fault& fault : faults)
        for (const SystemCall& call : CallsOf(fault.call)) {
            FailOnce(fault, call);
            ++tries;
        }
    EXPECT_GT(tries, 20);
    EXPECT_GT(failures_, tries / 4) << "those that hit what matters are noticed";
}

/// A disk that takes data without a word and loses them: the new file is read back before the old one goes.
TEST_P(SystemCalls, ThatLieAboutANewFileAreFoundOut) {
    const std::string operation = GetParam().operation;
    if (operation == "set-metadata" || operation == "remove-map")
        return; // not a new file
    ASSERT_NO_FATAL_FAILURE(Measure());
    const Fault fault = {"pwrite64", "retval=8192", {ErrorNumber::FileNotWritable}};
    for (const SystemCall& call : CallsOf("pwrite64"))
        FailOnce(fault, call);
    EXPECT_GT(failures_, 5);
}

INSTANTIATE_TEST_SUITE_P(OfSaves, SystemCalls, testing::ValuesIn(Scenarios), NameOf);
