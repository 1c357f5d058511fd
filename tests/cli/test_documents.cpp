#include "tests/cli/AtlavexTest.h"

#include "cli/ExitStatus.h"

#include <map>
#include <regex>

namespace {

struct Row {
    std::string name;
    int status = 0;
    bool operator==(const Row&) const = default;
};

std::vector<std::smatch> AllMatches(const std::string& text, const std::string& pattern) {
    const std::regex expression(pattern);
    return {std::sregex_iterator(text.begin(), text.end(), expression), {}};
}

/// The error numbers as the program declares them, with the exit statuses that it gives them.
std::map<int, Row> DeclaredErrors() {
    const std::string header = ReadWholeFile(SOURCE_DIR "/base/ComponentError.h");
    std::map<int, Row> rows;
    for (const auto& match : AllMatches(header, R"(\n    (\w+) = (\d+),)")) {
        const int number = std::stoi(match[2]);
        rows[number] = {match[1], static_cast<int>(ExitStatusOf(static_cast<ErrorNumber>(number), true))};
    }
    return rows;
}

std::map<int, Row> DocumentedErrors() {
    const std::string page = ReadWholeFile(SOURCE_DIR "/docs/errors.md");
    std::map<int, Row> rows;
    for (const auto& match : AllMatches(page, R"(\n\| (\d+) \| (\w+) \| [^\n|]+ \| (\d+) \|)"))
        rows[std::stoi(match[1])] = {match[2], std::stoi(match[3])};
    return rows;
}

std::set<int> Numbers(const std::string& text, const std::string& pattern) {
    std::set<int> numbers;
    for (const auto& match : AllMatches(text, pattern))
        numbers.insert(std::stoi(match[1]));
    return numbers;
}

const std::set<int> AllStatuses{0, 1, 2, 3, 4, 5, 6, 7, 130};

} // namespace

TEST(Documents, EveryErrorNumberIsListedWithItsExitStatus) {
    const auto declared = DeclaredErrors(), documented = DocumentedErrors();
    EXPECT_GE(declared.size(), 29U); // else the pattern no longer reads the header
    for (const auto& [number, row] : declared)
        EXPECT_TRUE(documented.count(number) == 1 && documented.at(number) == row)
            << number << " " << row.name;
    EXPECT_EQ(documented.size(), declared.size());
}

TEST(Documents, EveryExitStatusIsListed) {
    EXPECT_EQ(Numbers(ReadWholeFile(SOURCE_DIR "/docs/errors.md"), R"(\n\| (\d+) \| [^|\n]+ \|(?=\n|$))"),
              AllStatuses);
    const std::string manual = ReadWholeFile(SOURCE_DIR "/docs/atlavex.1");
    EXPECT_EQ(Numbers(manual.substr(manual.find(".SH EXIT STATUS")), R"(\n\.B (\d+))"), AllStatuses);
}

TEST(Documents, TheManualIsFormattedWithoutAComplaint) {
    const ProgramResult result =
        RunProgram({"groff", "-man", "-ww", "-Tutf8", "-z", SOURCE_DIR "/docs/atlavex.1"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
}

TEST(Documents, ACancelledOperationIsAnInterruptOnlyAfterASignal) {
    EXPECT_EQ(ExitStatusOf(ErrorNumber::Cancelled, true), ExitStatus::Interrupted);
    EXPECT_EQ(ExitStatusOf(ErrorNumber::Cancelled, false), ExitStatus::Failed);
}
