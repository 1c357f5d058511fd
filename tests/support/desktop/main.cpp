#include "tests/support/TempFolder.h"

#include <QApplication>
#include <QFontDatabase>

#include <gmock/gmock.h>

// Every program of desktop tests runs without a screen, in a home of its own, with settings of its own.
int main(int argc, char** argv) {
    const TempFolder home;
    const QByteArray folder = QByteArray::fromStdString(home.Path().string());
    for (const char* const name :
         {"HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"})
        qputenv(name, folder);
    // Nor in the user's language: numbers are typed and read as C writes them, where a test names no other
    // locale.
    qputenv("LC_ALL", "C.UTF-8");
    // Nor with the user's session bus; where there is none the library would start one.
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + folder + "/no-bus");
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    ::testing::InitGoogleMock(&argc, argv);
    const QApplication application(argc, argv);
    QApplication::setEffectEnabled(Qt::UI_AnimateMenu, false);
    QApplication::setEffectEnabled(Qt::UI_AnimateCombo, false);
    return RUN_ALL_TESTS();
}
