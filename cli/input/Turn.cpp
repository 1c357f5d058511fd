#include "cli/input/Turn.h"

#include "cli/input/Arguments.h"
#include "cli/output/ExitStatus.h"
#include "cli/output/Interrupt.h"
#include "cli/output/Output.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::chrono::milliseconds Unsaid(1000); ///< a wait so short is not worth a word
constexpr double LongestSeconds = 1e9;            ///< some thirty years

} // namespace

Turn::Turn(std::string file, std::optional<std::chrono::milliseconds> longest)
    : file_(std::move(file)), longest_(longest) {}

bool Turn::GoOn(std::chrono::milliseconds waited) noexcept {
    if (IsInterrupted() || (longest_ && waited >= *longest_))
        return false;
    if (waited >= Unsaid)
        due_ = true;
    if (std::this_thread::get_id() == home_)
        TellIfDue();
    return true;
}

void Turn::TellIfDue() noexcept {
    if (!due_ || std::exchange(told_, true))
        return;
    try {
        PrintMessage("Waiting for another program that uses '" + file_ + "'.");
    } catch (const std::exception&) {
        return; // the wait goes on without a word
    }
}

std::optional<std::chrono::milliseconds> ParseWait(const std::string& text) {
    if (text.empty())
        return std::nullopt;
    const double seconds = ParseNumber("--wait", text);
    if (seconds < 0)
        throw UsageError("--wait needs a number of seconds from 0, not '" + text + "'.");
    return std::chrono::milliseconds(static_cast<std::int64_t>(1000 * std::min(seconds, LongestSeconds)));
}
