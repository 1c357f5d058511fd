#pragma once

#include <QString>
#include <QUrl>

#include <functional>

class QWidget;

/// The maker's web server. A reserved name that leads nowhere until the maker names the real one.
inline constexpr QLatin1String HelpServer("https://www.kestova.example");

/// Opens an address in the user's web browser without waiting for it; false when there is none or it does not
/// start. What was started may still find that there is nothing to open the address with: `failed` is called
/// when it ends with a failure within ten seconds.
using AddressOpener = std::function<bool(const QUrl& address, const std::function<void()>& failed)>;
bool OpenInBrowser(const QUrl& address, const std::function<void()>& failed);

/// Opens the page on this program in the developer's guide, or tells the user where to find the guide.
void ShowHelp(QWidget* parent, const AddressOpener& open = OpenInBrowser);
