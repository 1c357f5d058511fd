#include "tests/faults/Killing.h"

#include "tests/support/TempFolder.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <map>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

pid_t Start(const std::vector<std::string>& command) {
    const pid_t child = fork();
    if (child < 0)
        throw std::runtime_error("fork failed");
    if (child > 0)
        return child;
    std::vector<char*> arguments;
    for (const std::string& word : command)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    const int nowhere = open("/dev/null", O_RDWR);
    dup2(nowhere, STDOUT_FILENO);
    dup2(nowhere, STDERR_FILENO);
    execvp(arguments[0], arguments.data());
    _exit(127);
}

/// The leak sanitizer traces the program itself at its end, which strace stands in the way of.
std::vector<std::string> UnderStrace(const std::vector<std::string>& options,
                                     const std::vector<std::string>& command) {
    std::vector<std::string> words = {"env", "ASAN_OPTIONS=detect_leaks=0", "strace", "-f"};
    words.insert(words.end(), options.begin(), options.end());
    words.insert(words.end(), command.begin(), command.end());
    return words;
}

} // namespace

std::vector<SystemCall> TraceCalls(const std::vector<std::string>& command, const std::string& names) {
    const TempFolder folder;
    const ProgramResult result =
        RunProgram(UnderStrace({"-y", "-o", (folder / "log").string(), "-e", "trace=" + names}, command));
    if (result.status != 0)
        throw std::runtime_error("strace could not trace the program (is ptrace permitted?): " + result.err);
    std::istringstream log(ReadWholeFile(folder / "log"));
    std::vector<SystemCall> calls;
    std::map<std::string, int> occurrences; // strace counts for each thread by itself
    for (std::string line; std::getline(log, line);) {
        // "PID  name(arguments) = result"; a call that was interrupted is told in two lines, the second of
        // which has "<..." in place of the name.
        const std::size_t begin = line.find_first_not_of("0123456789 ");
        const std::size_t end = line.find('(');
        if (begin == std::string::npos || end == std::string::npos || !std::islower(line[begin]))
            continue;
        const std::string name = line.substr(begin, end - begin);
        calls.push_back({name, ++occurrences[line.substr(0, begin) + name], line.substr(end)});
    }
    return calls;
}

std::chrono::microseconds RunAndKill(const std::vector<std::string>& command,
                                     std::chrono::microseconds after) {
    const auto begin = Clock::now();
    const pid_t child = Start(command);
    int status = 0;
    while (waitpid(child, &status, WNOHANG) == 0) {
        if (Clock::now() - begin >= after) {
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
            break;
        }
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    return std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - begin);
}

ProgramResult RunTampered(const std::vector<std::string>& command, const std::string& callName,
                          const std::string& tampering) {
    return RunProgram(UnderStrace(
        {"-qq", "-o", "/dev/null", "-e", "trace=" + callName, "-e", "inject=" + callName + ":" + tampering},
        command));
}

bool RunAndKillAt(const std::vector<std::string>& command, const SystemCall& call) {
    return RunTampered(command, call.name, "signal=SIGKILL:when=" + std::to_string(call.occurrence)).status ==
           128 + SIGKILL;
}
