#pragma once

#include <QString>
#include <QUrl>

#include <chrono>
#include <functional>

class QWidget;

/// The maker's web server. A reserved name that leads nowhere until the maker names the real one.
inline constexpr QLatin1String HelpServer("https://www.kestova.example");

/// Opens an address for the user without waiting for it; false when there is nothing to open it with. What
/// was started may still fail afterwards: then it calls `failed`.
using AddressOpener = std::function<bool(const QUrl& address, const std::function<void()>& failed)>;

/// Opens addresses in the user's web browser. What is started for it may find that there is none: a failure
/// with which it ends is told when it comes soon enough. What fails later has shown something, and the user
/// has gone on to other things.
class OpenInBrowser {
public:
    static constexpr std::chrono::seconds SoonEnough{10};

    explicit OpenInBrowser(std::chrono::milliseconds soonEnough = SoonEnough) : soonEnough_(soonEnough) {}

    bool operator()(const QUrl& address, const std::function<void()>& failed) const;

private:
    std::chrono::milliseconds soonEnough_;
};

/// Opens the page on this program in the developer's guide, or tells the user where to find the guide.
void ShowHelp(QWidget* parent, const AddressOpener& open = OpenInBrowser());
