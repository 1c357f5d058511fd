// Prints which kind of file Qt's programs take a file for, and how they call it.

#include <QMimeDatabase>

#include <iostream>

int main(int argumentCount, char** arguments) {
    for (int index = 1; index < argumentCount; ++index) {
        const QMimeType kind = QMimeDatabase().mimeTypeForFile(QString::fromLocal8Bit(arguments[index]));
        std::cout << qPrintable(kind.name()) << ": " << qPrintable(kind.comment()) << '\n';
    }
}
