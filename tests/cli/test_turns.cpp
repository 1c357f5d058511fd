#include "tests/cli/AtlavexTest.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

using testing::HasSubstr;
using testing::Not;

// Commands that use one library at the same time.

namespace {

using Turns = AtlavexTest;

/// Another program that holds a lock of the library until it is let go.
constexpr const char* Lock = R"(
import signal, sqlite3, subprocess, time
def lock(how='BEGIN IMMEDIATE'):
    holder = sqlite3.connect('a.Atlavex', isolation_level=None)
    holder.execute(how)
    holder.execute('SELECT count(*) FROM map').fetchall()
    return holder
def start(*arguments):
    return subprocess.Popen([atlavex, *arguments], stderr=subprocess.PIPE, text=True)
def end(command):
    message = command.communicate(timeout=50)[1].strip()
    return str(command.returncode) + ' ' + message
)";

} // namespace

TEST_F(Turns, AllOfManyCommandsThatWriteAtOnceAreDone) {
    const std::string library = ScaledLibrary();
    Bmp("small.bmp", 90, 70);
    const std::string answer = Python(R"(
import subprocess
from concurrent.futures import ThreadPoolExecutor
commands = []
for number in range(8):
    commands += [['add-map', 'a.Atlavex', 'small.bmp', '--name', f'sheet {number}'],
                 ['add-icon', 'a.Atlavex', 'small.bmp', '--name', f'icon {number}'],
                 ['set', 'a.Atlavex', 'map', 'name:Sheet', f'key{number}=value'],
                 ['compact', 'a.Atlavex']]
def run(arguments):
    return subprocess.run([atlavex] + arguments, stderr=subprocess.PIPE, text=True)
with ThreadPoolExecutor(4) as workers:
    for result in workers.map(run, commands):
        if result.returncode or 'Save As' in result.stderr:
            print(result)
)");
    EXPECT_EQ(answer, "");
    const auto info = DoJson({"info", library});
    EXPECT_EQ(info["maps"].size(), 9U);
    EXPECT_EQ(info["icons"].size(), 9U);
    for (int number = 0; number < 8; ++number)
        EXPECT_EQ(info["maps"][0]["metadata"]["key" + std::to_string(number)], "value");
    Do({"verify", library});
}

TEST_F(Turns, ACommandThatWaitsSaysSoAndIsDoneWhenItsTurnComes) {
    const std::string library = ScaledLibrary();
    const std::string answer = Python(std::string(Lock) + R"(
holder = lock()
command = start('set', 'a.Atlavex', 'map', '1', 'author=late')
print(command.stderr.readline().strip())
print(command.poll())
holder.close()
print(end(command))
)");
    EXPECT_EQ(answer, "atlavex: Waiting for another program that uses 'a.Atlavex'.\nNone\n0 \n");
    EXPECT_EQ(DoJson({"info", library})["maps"][0]["metadata"]["author"], "late");
}

TEST_F(Turns, AReaderIsWaitedForBeforeTheSaveEnds) {
    ScaledLibrary();
    const std::string answer = Python(std::string(Lock) + R"(
holder = lock('BEGIN')
command = start('set', 'a.Atlavex', 'map', '1', 'author=late')
print(command.stderr.readline().strip())
holder.close()
print(end(command))
)");
    EXPECT_EQ(answer, "atlavex: Waiting for another program that uses 'a.Atlavex'.\n0 \n");
}

TEST_F(Turns, TheWaitEndsWhenTheUserSaysAndNothingIsChanged) {
    const std::string library = ScaledLibrary();
    const std::string answer = Python(std::string(Lock) + R"(
holder = lock()
for arguments in (['set', 'a.Atlavex', 'map', '1', 'author=late'], ['compact', 'a.Atlavex'],
                  ['remove', 'a.Atlavex', 'icon', '1'], ['rekey', 'a.Atlavex', '--no-key']):
    for seconds in '0', '0.1':
        print(end(start(*arguments, '--wait', seconds)))
)");
    std::string expected;
    for (int run = 0; run < 8; ++run)
        expected += "1 atlavex: The file '" + library + "' is in use by another program.\n";
    EXPECT_EQ(answer, expected);
    EXPECT_EQ(DoJson({"info", library})["icons"].size(), 1U);
}

TEST_F(Turns, TheLongestWaitIsANumberOfSeconds) {
    const std::string library = ScaledLibrary();
    for (const char* seconds : {"x", "-1", "1s", "inf"})
        ExpectFailure(2, {"set", library, "map", "1", "a=b", "--wait", seconds}, "--wait");
    Do({"set", library, "map", "1", "a=b", "--wait", "1e300"});
}

TEST_F(Turns, ASignalEndsTheWait) {
    ScaledLibrary();
    const std::string answer = Python(std::string(Lock) + R"(
holder = lock()
command = start('set', 'a.Atlavex', 'map', '1', 'author=late')
print(command.stderr.readline().strip())
command.send_signal(signal.SIGINT)
print(end(command))
)");
    EXPECT_THAT(answer, HasSubstr("\n130 atlavex: The command was interrupted."));
}

TEST_F(Turns, AFileThatIsReplacedDuringACommandIsToldInTheCommandsOwnWords) {
    const std::string library = ScaledLibrary(), other = SealedLibrary("b.Atlavex", "secret");
    // The key comes through a pipe, after the library has been loaded: time for another program to replace
    // it.
    const std::string answer = Python(R"(
import shutil, subprocess
os.mkfifo('pipe')
merge = subprocess.Popen([atlavex, 'merge', 'a.Atlavex', 'b.Atlavex', '--other-key-file', 'pipe'], stderr=subprocess.PIPE)
with open('pipe', 'w') as pipe:
    shutil.copy('a.Atlavex', 'copy')
    subprocess.run([atlavex, 'set', 'copy', 'map', '1', 'author=somebody'], check=True)
    os.rename('copy', 'a.Atlavex')
    pipe.write('secret')
print(merge.communicate(timeout=60)[1].decode().strip())
print(merge.returncode)
os.remove('pipe')
)");
    EXPECT_THAT(answer, HasSubstr("\n6\n"));
    EXPECT_THAT(answer, HasSubstr("changed by another program"));
    EXPECT_THAT(answer, Not(HasSubstr("Save As")));
    EXPECT_EQ(DoJson({"info", library})["maps"][0]["metadata"]["author"], "somebody");
    EXPECT_EQ(FileNames().size(), 4U); // the two libraries and two images
}
