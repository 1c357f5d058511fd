#include "cli/input/Pairs.h"

#include "base/NumberText.h"
#include "cli/input/LineReader.h"
#include "cli/output/Interrupt.h"
#include "cli/output/Output.h"

#include <nlohmann/json.hpp>

#include <utility>

namespace {

constexpr std::string_view Separators = " \t;\r";

/// The next word of the text, which is cut off it; empty at its end.
std::string_view PopWord(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(Separators), text.size()));
    const std::string_view word = text.substr(0, text.find_first_of(Separators));
    text.remove_prefix(word.size());
    return word;
}

bool IsSkipped(std::string_view line) {
    const std::string_view word = PopWord(line);
    return word.empty() || word.starts_with('#');
}

std::optional<Pair> TwoNumbers(std::string_view line) {
    const auto words = TwoWords(line);
    const auto x = words ? TextToNumber(words->first) : std::nullopt;
    const auto y = words ? TextToNumber(words->second) : std::nullopt;
    if (!x || !y)
        return std::nullopt;
    return Pair{*x, *y};
}

std::string InLine(std::int64_t number, const std::string& reason) {
    return "Line " + std::to_string(number) + " of the input: " + reason;
}

/// Prints results one by one; a JSON array is complete also after a failure.
class PairPrinter {
public:
    explicit PairPrinter(const PairTask& task) : task_(task) {}

    void Begin() const {
        if (task_.json)
            Print("[");
    }
    void Show(const Pair& from, const Pair& to) {
        if (task_.json)
            Print((first_ ? "\n" : ",\n") + AsJson(from, to).dump());
        else
            Print(CoordinateText(to.x) + " " + CoordinateText(to.y) + "\n");
        first_ = false;
    }
    void End() const {
        if (task_.json)
            Print(first_ ? "]\n" : "\n]\n");
        FlushOutput();
    }

    nlohmann::ordered_json AsJson(const Pair& from, const Pair& to) const {
        return {{task_.from.x, from.x}, {task_.from.y, from.y}, {task_.to.x, to.x}, {task_.to.y, to.y}};
    }

private:
    const PairTask& task_;
    bool first_ = true;
};

Pair ConvertLine(const PairTask& task, const Pair& from, std::int64_t number) {
    try {
        return task.convert(from);
    } catch (const ComponentError& error) {
        throw CommandFailure(ExitStatusOf(error.Number(), IsInterrupted()),
                             InLine(number, error.Description()));
    }
}

void ConvertLines(const PairTask& task, PairPrinter& printer) {
    LineReader input(FlushOutput);
    std::string line;
    while (input.Next(line)) {
        ThrowIfInterrupted();
        if (IsSkipped(line))
            continue;
        const auto from = task.read ? task.read(line) : TwoNumbers(line);
        if (!from)
            throw CommandFailure(
                ExitStatus::Failed,
                InLine(input.Number(), "'" + line + "' is not a pair of numbers such as 12.5 55.75."));
        printer.Show(*from, ConvertLine(task, *from, input.Number()));
    }
}

} // namespace

std::optional<std::pair<std::string_view, std::string_view>> TwoWords(std::string_view line) {
    const std::string_view first = PopWord(line), second = PopWord(line);
    if (second.empty() || !PopWord(line).empty())
        return std::nullopt;
    return std::pair{first, second};
}

bool PairGiven(const std::string& x, const std::string& y) {
    if (x.empty() != y.empty())
        throw UsageError("A pair needs both of its numbers.");
    return !x.empty();
}

ExitStatus ConvertPair(const PairTask& task, const Pair& pair) {
    const Pair result = task.convert(pair);
    PairPrinter printer(task);
    if (task.json)
        PrintJson(printer.AsJson(pair, result));
    else
        printer.Show(pair, result);
    return ExitStatus::Done;
}

ExitStatus ConvertPairsOfInput(const PairTask& task) {
    PairPrinter printer(task);
    printer.Begin();
    try {
        ConvertLines(task, printer);
    } catch (const CommandFailure&) {
        printer.End();
        throw;
    }
    printer.End();
    return ExitStatus::Done;
}
