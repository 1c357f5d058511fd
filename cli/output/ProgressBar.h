#pragma once

/// One line on the standard error stream that shows how far the work is, in percent. Shown only when that
/// stream is a terminal; erased at the end.
class ProgressBar {
public:
    ProgressBar();
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    void Begin(float total);
    void Show(float done);
    void End();

private:
    bool onTerminal_;
    float total_ = 0;
    int shownPercent_ = -1; ///< -1: the line is empty
};
