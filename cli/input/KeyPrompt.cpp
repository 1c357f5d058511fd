#include "cli/input/KeyPrompt.h"

#include "base/FileDescriptor.h"
#include "cli/output/ExitStatus.h"
#include "cli/output/Interrupt.h"
#include "cli/output/Output.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>

namespace {

constexpr std::size_t LongestTypedKey = 4096; // the longest line that a terminal hands over

/// The controlling terminal with echo switched off; both are put back at the end.
class SilentTerminal {
public:
    SilentTerminal() : descriptor_(open("/dev/tty", O_RDWR | O_CLOEXEC | O_NOCTTY)) {
        if (!descriptor_.IsOpen() || tcgetattr(descriptor_.Number(), &before_) != 0)
            return;
        termios silent = before_;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        silent.c_lflag |= ECHONL;
        usable_ = tcsetattr(descriptor_.Number(), TCSAFLUSH, &silent) == 0;
    }
    ~SilentTerminal() {
        if (usable_)
            tcsetattr(descriptor_.Number(), TCSAFLUSH, &before_);
    }
    SilentTerminal(const SilentTerminal&) = delete;
    SilentTerminal& operator=(const SilentTerminal&) = delete;

    bool Usable() const { return usable_; }

    bool Write(std::string_view text) const {
        return write(descriptor_.Number(), text.data(), text.size()) == static_cast<ssize_t>(text.size());
    }

    SecretText ReadLine() const {
        std::string line(LongestTypedKey, '\0');
        WaitForInput(descriptor_.Number());
        const ssize_t got = read(descriptor_.Number(), line.data(), line.size());
        ThrowIfInterrupted();
        line.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
        if (line.ends_with('\n'))
            line.pop_back();
        return SecretText(std::move(line));
    }

private:
    FileDescriptor descriptor_;
    termios before_{};
    bool usable_ = false;
};

} // namespace

std::optional<SecretText> AskForKey(const std::string& prompt) {
    if (isatty(STDIN_FILENO) != 1 && isatty(STDERR_FILENO) != 1)
        return std::nullopt;
    const SilentTerminal terminal;
    if (!terminal.Usable() || !terminal.Write(Printable(prompt)))
        return std::nullopt;
    return terminal.ReadLine();
}
