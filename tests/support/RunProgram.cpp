#include "tests/support/RunProgram.h"

#include "tests/support/TempFolder.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <stdexcept>

ProgramResult RunProgram(const std::vector<std::string>& command, const std::string& input) {
    // Files instead of pipes: no order of reading and writing can block.
    const TempFolder folder;
    const auto in = (folder / "in").string(), out = (folder / "out").string(),
               err = (folder / "err").string();
    WriteWholeFile(in, input);
    const pid_t child = fork();
    if (child < 0)
        throw std::runtime_error("fork failed");
    if (child == 0) {
        std::vector<char*> arguments;
        for (const std::string& word : command)
            arguments.push_back(const_cast<char*>(word.c_str()));
        arguments.push_back(nullptr);
        if (freopen(in.c_str(), "rb", stdin) && freopen(out.c_str(), "wb", stdout) &&
            freopen(err.c_str(), "wb", stderr))
            execvp(arguments[0], arguments.data());
        _exit(127);
    }
    int status = 0;
    waitpid(child, &status, 0);
    ProgramResult result;
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    result.out = ReadWholeFile(out);
    result.err = ReadWholeFile(err);
    return result;
}
