#include "tests/cli/AtlavexTest.h"

#include "cli/output/ExitStatus.h"

#include <map>
#include <sstream>

namespace {

struct Row {
    std::string name;
    int status = 0;
    bool operator==(const Row&) const = default;
};

/// The cells of a table's row without the blanks around them; none for any other line.
std::vector<std::string> Cells(const std::string& line) {
    if (!line.starts_with("| "))
        return {};
    std::istringstream stream(line.substr(2));
    std::vector<std::string> cells;
    for (std::string cell; std::getline(stream, cell, '|');) {
        const std::size_t start = cell.find_first_not_of(' ');
        cells.push_back(
            start == std::string::npos ? "" : cell.substr(start, cell.find_last_not_of(' ') + 1 - start));
    }
    return cells;
}

bool IsNumber(const std::string& text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

/// The error numbers as the program declares them ("    Name = 12,"), with the exit statuses that it gives
/// them.
std::map<int, Row> DeclaredErrors() {
    std::map<int, Row> rows;
    for (const std::string& line : Lines(ReadWholeFile(SOURCE_DIR "/base/ComponentError.h"))) {
        std::istringstream words(line);
        std::string name, equals;
        int number = 0;
        char comma = 0;
        if (words >> name >> equals >> number >> comma && equals == "=" && comma == ',')
            rows[number] = {name, static_cast<int>(ExitStatusOf(static_cast<ErrorNumber>(number), true))};
    }
    return rows;
}

std::map<int, Row> DocumentedErrors() {
    std::map<int, Row> rows;
    for (const std::string& line : Lines(ReadWholeFile(SOURCE_DIR "/docs/errors.md")))
        if (const auto cells = Cells(line); cells.size() == 4 && IsNumber(cells[0]))
            rows[std::stoi(cells[0])] = {cells[1], std::stoi(cells[3])};
    return rows;
}

std::set<int> DocumentedStatuses() {
    std::set<int> statuses;
    for (const std::string& line : Lines(ReadWholeFile(SOURCE_DIR "/docs/errors.md")))
        if (const auto cells = Cells(line); cells.size() == 2 && IsNumber(cells[0]))
            statuses.insert(std::stoi(cells[0]));
    return statuses;
}

std::set<int> StatusesOfTheManual() {
    const std::string manual = ReadWholeFile(SOURCE_DIR "/docs/atlavex.1");
    std::set<int> statuses;
    for (const std::string& line : Lines(manual.substr(manual.find(".SH EXIT STATUS"))))
        if (line.starts_with(".B ") && IsNumber(line.substr(3)))
            statuses.insert(std::stoi(line.substr(3)));
    return statuses;
}

const std::set<int> AllStatuses{0, 1, 2, 3, 4, 5, 6, 7, 129, 130, 131};

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
    EXPECT_EQ(DocumentedStatuses(), AllStatuses);
    EXPECT_EQ(StatusesOfTheManual(), AllStatuses);
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
