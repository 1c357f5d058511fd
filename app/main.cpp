#include "app/modMain.h"

#include <QApplication>

int main(int argc, char** argv) {
    if (argc == 2 && AnswerOption(argv[1]))
        return 0;
    QApplication application(argc, argv);
    return RunStudio(application);
}
