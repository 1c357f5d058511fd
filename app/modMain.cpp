#include "app/modMain.h"

#include "app/frmMain.h"
#include "catalogue/modCountryData.h"
#include "catalogue/modGadgets.h"

#include <QApplication>

namespace {

// On only in builds made for looking at the program's own workings.
#ifdef QUORVANT_DIAGNOSTIC
constexpr bool DiagnosticMode = true;
#else
constexpr bool DiagnosticMode = false;
#endif

void FillCatalogue() {
    FillUnits();
    FillCountries();
    FillGridsAndDatums();
    FillZones();
}

} // namespace

int RunStudio(QApplication& application) {
    FillCatalogue();
    frmMain window(DiagnosticMode);
    // A path with blanks that nobody quoted arrives in pieces.
    window.Form_Load(QApplication::arguments().mid(1).join(QLatin1Char(' ')));
    window.show();
    return application.exec();
}
