#include "platform/modHelp.h"

#include "platform/modMessages.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QElapsedTimer>
#include <QPointer>
#include <QProcess>
#include <QStandardPaths>
#include <QWidget>

#include <unistd.h>

namespace {

/// The desktop's program that opens an address. Some desktops' is the browser itself and lives as long: it is
/// left alone when this program ends.
class Browser : public QProcess {
public:
    Browser(const std::function<void()>& failed, std::chrono::milliseconds soonEnough)
        : QProcess(QCoreApplication::instance()), soonEnough_(soonEnough) {
        setObjectName(QStringLiteral("Browser"));
        setProcessChannelMode(QProcess::ForwardedChannels);
        setStandardInputFile(QProcess::nullDevice());
        // A signal from the terminal in which this program was started is not meant for the browser.
        setChildProcessModifier([] { setsid(); });
        started_.start();
        connect(this, &QProcess::errorOccurred, this, [this, failed](QProcess::ProcessError error) {
            if (error == QProcess::FailedToStart)
                End(failed, true);
        });
        connect(this, &QProcess::finished, this, [this, failed](int status, QProcess::ExitStatus how) {
            End(failed, how == QProcess::CrashExit || status != 0);
        });
    }
    ~Browser() override { setProcessState(QProcess::NotRunning); } // else it would be killed
    Browser(const Browser&) = delete;
    Browser& operator=(const Browser&) = delete;

private:
    void End(const std::function<void()>& failed, bool isFailure) {
        deleteLater();
        if (isFailure && !started_.hasExpired(soonEnough_.count()))
            failed();
    }

    std::chrono::milliseconds soonEnough_;
    QElapsedTimer started_;
};

} // namespace

bool OpenInBrowser::operator()(const QUrl& address, const std::function<void()>& failed) const {
    const QString program = QStandardPaths::findExecutable(QStringLiteral("xdg-open"));
    if (program.isEmpty())
        return QDesktopServices::openUrl(address);
    (new Browser(failed, soonEnough_))->start(program, {address.toString(QUrl::FullyEncoded)});
    return true;
}

void ShowHelp(QWidget* parent, const AddressOpener& open) {
    const QString guide = HelpServer + QStringLiteral("/quorvant/guide.asp");
    const QString sentence = QStringLiteral("Internet Explorer could not be launched. Please visit ") +
                             guide + QStringLiteral(" for the Developer's Guide");
    const auto failed = [window = QPointer<QWidget>(parent), sentence] { OpenMessage(window, sentence); };
    if (!open(QUrl(guide + QStringLiteral("?section=Studio&ref=app")), failed))
        ShowMessage(parent, sentence);
}
