#include "platform/modHelp.h"

#include "platform/modMessages.h"

#include <QDesktopServices>

bool OpenInBrowser(const QUrl& address) {
    return QDesktopServices::openUrl(address);
}

void ShowHelp(QWidget* parent, const AddressOpener& open) {
    const QString guide = HelpServer + QStringLiteral("/quorvant/guide.asp");
    if (open(QUrl(guide + QStringLiteral("?section=Studio&ref=app"))))
        return;
    ShowMessage(parent, QStringLiteral("Internet Explorer could not be launched. Please visit ") + guide +
                            QStringLiteral(" for the Developer's Guide"));
}
