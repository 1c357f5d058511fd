#include "cli/ProgressBar.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <string_view>

namespace {

/// On the terminal at once; a bar that cannot be drawn is no reason to break off the work.
void Draw(std::string_view text) {
    static_cast<void>(std::fwrite(text.data(), 1, text.size(), stderr));
    static_cast<void>(std::fflush(stderr));
}

} // namespace

ProgressBar::ProgressBar() : onTerminal_(isatty(STDERR_FILENO) == 1) {}

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
