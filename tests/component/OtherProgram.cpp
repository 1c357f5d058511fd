#include "tests/component/OtherProgram.h"

#include "tests/support/RunProgram.h"

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <stdexcept>

namespace {

constexpr const char* LockScript = R"(
import sqlite3, sys
database = sqlite3.connect(sys.argv[1], isolation_level=None)
database.execute("BEGIN " + sys.argv[2])
print("locked", flush=True)
sys.stdin.read()
)";

} // namespace

LockingProgram::LockingProgram(const std::string& file, const std::string& kind) {
    std::array<int, 2> toChild{}, fromChild{};
    if (pipe(toChild.data()) != 0 || pipe(fromChild.data()) != 0)
        throw std::runtime_error("no pipe");
    child_ = fork();
    if (child_ == 0) {
        dup2(toChild[0], 0);
        dup2(fromChild[1], 1);
        close(toChild[1]);
        close(fromChild[0]);
        execl("/usr/bin/python3", "python3", "-c", LockScript, file.c_str(), kind.c_str(), nullptr);
        _exit(127);
    }
    close(toChild[0]);
    close(fromChild[1]);
    input_ = toChild[1];
    char first = 0;
    const bool locked = read(fromChild[0], &first, 1) == 1;
    output_ = fromChild[0];
    if (!locked)
        throw std::runtime_error("the other program could not lock " + file);
}

LockingProgram::~LockingProgram() {
    close(input_);
    close(output_);
    waitpid(child_, nullptr, 0);
}

void SaveByAnotherProgram(const std::string& file, const std::string& key, const std::string& value) {
    const ProgramResult result = RunProgram({LIBRARY_PEER, file, key, value});
    if (result.status != 0)
        throw std::runtime_error("the other program failed: " + result.err);
}
