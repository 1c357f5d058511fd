// The program: what it does before there is a main window.

#include "app/frmMain.h"
#include "app/modResize.h"
#include "catalogue/FillTables.h"
#include "catalogue/modConst.h"
#include "component/Recovery.h"
#include "platform/SessionBus.h"

#include <QApplication>
#include <QFileInfo>
#include <QIcon>
#include <QScreen>

#include <iostream>
#include <optional>
#include <string_view>

namespace {

// On only in builds made for looking at the program's own workings.
#ifdef QUORVANT_DIAGNOSTIC
constexpr bool DiagnosticMode = true;
#else
constexpr bool DiagnosticMode = false;
#endif

constexpr std::string_view HelpPage = "Usage: quorvant-studio [FILE.Atlavex]\n"
                                      "\n"
                                      "The editor of map libraries; with a file it opens that library.\n"
                                      "What it does can be done without a display by the command atlavex.\n"
                                      "\n"
                                      "  --help     Print this page.\n"
                                      "  --version  Print the version.\n";

/// Under this name the desktop knows the program: its entry in menus, its icon.
constexpr QLatin1String DesktopName("quorvant-studio");

/// The desktop's own drawing of the program's icon, or the one that the program brings along.
QIcon ProgramIcon() {
    QIcon own;
    for (const int size : {16, 32, 48, 128})
        own.addFile(QStringLiteral(":/icons/%1/%2.png").arg(size).arg(DesktopName));
    return QIcon::fromTheme(DesktopName, own);
}

void FillCatalogue() {
    FillUnits();
    FillCountries();
    FillGridsAndDatums();
    FillZones();
}

/// Answers an option that stands alone on the command line, --version or --help, on the standard output.
/// False for anything else and where a file has that name: it is a library then.
bool AnswerOption(const char* argument) {
    const std::string_view option = argument;
    if (QFileInfo::exists(QFile::decodeName(argument)))
        return false;
    if (option == "--version")
        std::cout << ApplicationName << ' ' << VersionText() << std::endl;
    else if (option == "--help")
        std::cout << HelpPage << std::flush;
    else
        return false;
    return true;
}

/// Says what programs left that ended unexpectedly, to whoever started this one in a terminal or reads its
/// journal.
void TellUnsavedWork() noexcept {
    try {
        for (const UnsavedWork& work : FindUnsavedWork())
            if (!work.isInUse)
                std::cerr << "quorvant-studio: Unsaved work was left by a program that ended unexpectedly"
                          << (work.library.empty() ? std::string() : ", on '" + work.library + "'")
                          << (work.time.empty() ? std::string() : ", last changed " + work.time)
                          << ". It stays in '" << work.scratch << "' until it is recovered, by\n"
                          << "    atlavex recover '" << work.scratch << "' --to NEW.Atlavex\n"
                          << "or discarded, by\n"
                          << "    atlavex recover '" << work.scratch << "' --discard" << std::endl;
    } catch (const std::exception&) {
        return; // the program starts all the same
    }
}

/// Shows the main window, with the library file of the command line, if one is named, and runs until it is
/// closed.
int RunStudio(QApplication& application) {
    FillCatalogue();
    frmMain window(DiagnosticMode);
    const QRect place = StartingPlace(window.screen()->availableGeometry());
    window.resize(place.size());
    window.move(place.topLeft());
    // A path with blanks that nobody quoted arrives in pieces.
    window.Form_Load(QApplication::arguments().mid(1).join(QLatin1Char(' ')));
    window.show();
    return application.exec();
}

} // namespace

int main(int argc, char** argv) {
    // Before there is a QApplication, which needs a display.
    if (argc == 2 && AnswerOption(argv[1]))
        return 0;
    QGuiApplication::setDesktopFileName(DesktopName);
    TellUnsavedWork(); // before the desktop has a say: it may be what stands in the way
    std::optional<SilentBusGuard> guard(std::in_place);
    QApplication application(argc, argv);
    guard.reset();
    QApplication::setWindowIcon(ProgramIcon());
    return RunStudio(application);
}
