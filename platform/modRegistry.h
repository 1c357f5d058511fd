#pragma once

#include <QString>
#include <QVariant>

// The user's settings, addressed by key paths like "Software\Kestova\Brisquent\Export": after "Software" the
// organisation, the application, and the key within it. On Windows this is the registry below
// HKEY_CURRENT_USER; elsewhere one INI file an application, $XDG_CONFIG_HOME/Kestova/Brisquent.conf, in which
// the example is the section [Export]. Failures are never reported: what cannot be read is missing, what
// cannot be written is not.

enum class RootKey { CurrentUser };

/// Makes sure that values can be stored under the key. A key shows up in the store with its first value.
void CreateNewKey(RootKey root, const QString& keyPath);

/// Stores the text; an empty text is not written, so that what was stored before stays.
void SetKeyValue(RootKey root, const QString& keyPath, const QString& valueName, const QString& text);

/// The stored text, or a number of 32 bits where the store has such values; otherwise an invalid QVariant.
QVariant QueryValue(RootKey root, const QString& keyPath, const QString& valueName);
