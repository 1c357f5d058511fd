#include "cli/output/ProgressBar.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

/// On the terminal at once; a bar that cannot be drawn is no reason to break off the work.
void Draw(std::string_view text) {
    static_cast<void>(std::fwrite(text.data(), 1, text.size(), stderr));
    static_cast<void>(std::fflush(stderr));
}

/// A terminal that calls itself dumb would show the bar's escapes as they are.
bool TerminalErasesLines() {
    const char* const kind = std::getenv("TERM");
    return kind == nullptr || std::string_view(kind) != "dumb";
}

} // namespace

ProgressBar::ProgressBar() : onTerminal_(isatty(STDERR_FILENO) == 1 && TerminalErasesLines()) {}

ProgressBar::~ProgressBar() {
    End();
}

void ProgressBar::Begin(float total) {
    total_ = total;
    Show(0);
}

void ProgressBar::Show(float done) {
    if (!onTerminal_ || !(total_ > 0))
        return;
    const int percent = static_cast<int>(std::clamp(100 * done / total_, 0.0F, 100.0F));
    if (percent == shownPercent_)
        return;
    shownPercent_ = percent;
    constexpr int Cells = 40;
    const auto full = static_cast<std::size_t>(percent * Cells / 100);
    const std::string bar = std::string(full, '#') + std::string(Cells - full, '.');
    const std::string number = std::to_string(percent);
    Draw("\r[" + bar + "] " + std::string(3 - number.size(), ' ') + number + " %");
}

void ProgressBar::End() {
    if (shownPercent_ < 0)
        return;
    shownPercent_ = -1;
    // Back to the first column and clear to the end of the line.
    Draw("\r\x1b[K");
}
