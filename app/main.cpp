#include "app/modMain.h"
#include "platform/SessionBus.h"

#include <QApplication>

#include <optional>

int main(int argc, char** argv) {
    if (argc == 2 && AnswerOption(argv[1]))
        return 0;
    std::optional<SilentBusGuard> guard(std::in_place);
    QApplication application(argc, argv);
    guard.reset();
    return RunStudio(application);
}
