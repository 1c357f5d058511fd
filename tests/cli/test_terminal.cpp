#include "tests/cli/AtlavexTest.h"

#include <gmock/gmock.h>

using testing::HasSubstr;
using testing::Not;

// What only shows on a terminal or while the program runs: driven through a pseudo terminal and with signals.

namespace {

using Terminal = AtlavexTest;

/// Runs atlavex on a terminal of its own, types the text when the prompt has come, prints what the terminal
/// showed and the exit status.
constexpr const char* OnTerminal = R"(
import pty, time
os.environ['TERM'] = 'xterm'
def on_terminal(arguments, typed=None):
    child, terminal = pty.fork()
    if child == 0:
        os.execv(atlavex, ['atlavex'] + arguments)
    shown = b''
    while True:
        try:
            piece = os.read(terminal, 4096)
        except OSError:
            break
        if not piece:
            break
        shown += piece
        if typed and b': ' in shown:
            os.write(terminal, typed.encode())
            typed = None
    status = os.waitstatus_to_exitcode(os.waitpid(child, 0)[1])
    return shown.decode(), status
)";

} // namespace

TEST_F(Terminal, AKeyIsAskedForWithoutShowingIt) {
    SealedLibrary("a.Atlavex", "sesame");
    const std::string script = OnTerminal;
    const std::string right = Python(script + "print(on_terminal(['info', 'a.Atlavex'], 'sesame\\n'))");
    EXPECT_THAT(right, HasSubstr("Key of a.Atlavex: "));
    EXPECT_THAT(right, HasSubstr("Sealed: yes"));
    EXPECT_THAT(right, HasSubstr(", 0)"));
    EXPECT_THAT(right, Not(HasSubstr("sesame")));
    const std::string wrong = Python(script + "print(on_terminal(['info', 'a.Atlavex'], 'open\\n'))");
    EXPECT_THAT(wrong, HasSubstr("does not open"));
    EXPECT_THAT(wrong, HasSubstr(", 3)"));
    const std::string broken = Python(script + "print(on_terminal(['info', 'a.Atlavex'], '\\x03'))");
    EXPECT_THAT(broken, HasSubstr(", 130)"));
}

TEST_F(Terminal, LongWorkShowsABarThatIsGoneAtTheEnd) {
    NewLibrary();
    Bmp("big.bmp", 2000, 1500);
    const std::string shown =
        Python(std::string(OnTerminal) + "print(on_terminal(['add-map', 'a.Atlavex', 'big.bmp']))");
    EXPECT_THAT(shown, HasSubstr(" %"));
    EXPECT_THAT(shown, HasSubstr("\\r\\x1b[K', 0)"));
}

TEST_F(Terminal, ADumbTerminalGetsNoEscapesAndNoTerminalColours) {
    NewLibrary();
    Bmp("big.bmp", 2000, 1500);
    const std::string script = OnTerminal;
    EXPECT_EQ(Python(script + "os.environ['TERM'] = 'dumb'\n"
                              "print(on_terminal(['add-map', 'a.Atlavex', 'big.bmp']))"),
              "('', 0)\n");
    for (const char* setting : {"os.environ['NO_COLOR'] = '1'\n", "os.environ.pop('NO_COLOR', None)\n"})
        EXPECT_EQ(
            Python(script + setting +
                   "import re\nos.environ['TERM'] = 'xterm-256color'\n"
                   "for words in ['add-map', 'a.Atlavex', 'big.bmp'], ['--help'], ['info', 'missing']:\n"
                   "    print(re.findall('\\x1b\\\\[[0-9;]*m', on_terminal(words)[0]))"),
            "[]\n[]\n[]\n");
}

TEST_F(Terminal, ASignalEndsAWaitForInput) {
    ScaledLibrary();
    const std::string answer = Python(R"(
import signal, subprocess
for number in signal.SIGINT, signal.SIGTERM:
    run = subprocess.Popen([atlavex, 'locate', 'a.Atlavex', '1'], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                           stderr=subprocess.DEVNULL)
    run.stdin.write(b'0 0\n')
    run.stdin.flush()
    print(run.stdout.readline().decode().strip())  # answered while the input is still open
    run.send_signal(number)
    print(run.wait(timeout=30))
)");
    EXPECT_EQ(answer, "500000 6100000\n130\n500000 6100000\n130\n");
}

TEST_F(Terminal, EachSignalHasItsStatus) {
    ScaledLibrary();
    const std::string answer = Python(R"(
import resource, signal, subprocess
resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
for number in signal.SIGHUP, signal.SIGQUIT:
    run = subprocess.Popen([atlavex, 'locate', 'a.Atlavex', '1'], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                           stderr=subprocess.PIPE)
    run.stdin.write(b'0 0\n')
    run.stdin.flush()
    run.stdout.readline()
    run.send_signal(number)
    print(run.wait(timeout=30), run.stderr.read().decode().startswith('atlavex: '))
)");
    EXPECT_EQ(answer, "129 True\n131 True\n");
}

TEST_F(Terminal, ASignalThatIsIgnoredAtTheStartStaysIgnored) {
    ScaledLibrary();
    const std::string answer = Python(R"(
import signal, subprocess
for number in signal.SIGHUP, signal.SIGINT:
    run = subprocess.Popen([atlavex, 'locate', 'a.Atlavex', '1'], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                           preexec_fn=lambda: signal.signal(number, signal.SIG_IGN))
    run.stdin.write(b'0 0\n')
    run.stdin.flush()
    run.stdout.readline()
    run.send_signal(number)
    run.stdin.write(b'0 0\n')
    run.stdin.flush()
    print(run.stdout.readline().decode().strip())
    run.stdin.close()
    print(run.wait(timeout=30))
)");
    EXPECT_EQ(answer, "500000 6100000\n0\n500000 6100000\n0\n");
}

TEST_F(Terminal, ASignalEndsAnImportAndLeavesTheLibraryAsItWas) {
    ScaledLibrary();
    const auto names = FileNames();
    // A large image that takes seconds; the signal comes when the library's journal shows that it is under
    // way.
    const std::string answer = Python(R"(
import hashlib, signal, struct, subprocess, time
width, height = 24000, 20000
with open('big.bmp', 'wb') as big:
    big.write(b'BM' + struct.pack('<IIIIIIHHIIIIII', 54 + 3 * width * height, 0, 54, 40, width, height, 1, 24, 0, 0, 0, 0, 0, 0))
    big.truncate(54 + 3 * width * height)
digest = lambda: hashlib.sha256(open('a.Atlavex', 'rb').read()).digest()
before = digest()
run = subprocess.Popen([atlavex, 'add-map', 'a.Atlavex', 'big.bmp'], stderr=subprocess.PIPE)
while run.poll() is None and not os.path.exists('a.Atlavex-journal'):
    time.sleep(0.001)
run.send_signal(signal.SIGINT)
message = run.communicate(timeout=60)[1].decode()
print(run.returncode, message.startswith('atlavex: '), digest() == before)
os.remove('big.bmp')
)");
    EXPECT_EQ(answer, "130 True True\n");
    EXPECT_EQ(FileNames(), names);
    Do({"verify", In("a.Atlavex")});
}
