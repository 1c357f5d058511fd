#include "base/StandardErrors.h"
#include "cli/commands/CommandSet.h"
#include "cli/output/Interrupt.h"
#include "cli/output/Output.h"

#include <exception>

namespace {

/// Says what went wrong and answers the exit status.
int Report(ExitStatus status, const std::string& sentence) {
    PrintMessage(sentence);
    return static_cast<int>(status);
}

} // namespace

int main(int argumentCount, char** arguments) {
    CatchInterrupts();
    try {
        CommandSet commands;
        return static_cast<int>(commands.Run(argumentCount, arguments));
    } catch (const CommandFailure& failure) {
        return Report(failure.Status(), failure.what());
    } catch (const ComponentError& error) {
        const ExitStatus status = ExitStatusOf(error.Number(), IsInterrupted());
        return Report(status == ExitStatus::Interrupted ? InterruptStatus() : status, error.Description());
    } catch (const std::exception& error) {
        return Report(ExitStatus::Failed, SentenceOf(error));
    }
}
