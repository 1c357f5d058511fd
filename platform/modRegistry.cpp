#include "platform/modRegistry.h"

#include <QSettings>
#include <QStringList>

#include <optional>

namespace {

/// A key's place in the store; no store for a path that does not reach down to an application.
struct OpenKey {
    OpenKey(RootKey root, const QString& keyPath);

    std::optional<QSettings> store;
    QString group; ///< of the key within the store, ending in "/"; empty for the application's own key
};

OpenKey::OpenKey(RootKey root, const QString& keyPath) {
    QStringList parts = keyPath.split(u'\\', Qt::SkipEmptyParts);
    if (root != RootKey::CurrentUser || parts.size() < 3 || parts.takeFirst() != QStringLiteral("Software"))
        return;
    const QString organisation = parts.takeFirst();
    const QString application = parts.takeFirst();
    store.emplace(QSettings::NativeFormat, QSettings::UserScope, organisation, application);
    // This key alone: Qt would look in the organisation's and in all users' settings as well.
    store->setFallbacksEnabled(false);
    if (!parts.isEmpty())
        group = parts.join(u'/') + u'/';
}

} // namespace

void CreateNewKey(RootKey root, const QString& keyPath) {
    if (OpenKey key(root, keyPath); key.store)
        key.store->sync();
}

void SetKeyValue(RootKey root, const QString& keyPath, const QString& valueName, const QString& text) {
    if (text.isEmpty())
        return;
    if (OpenKey key(root, keyPath); key.store)
        key.store->setValue(key.group + valueName, text);
}

QVariant QueryValue(RootKey root, const QString& keyPath, const QString& valueName) {
    const OpenKey key(root, keyPath);
    if (!key.store)
        return {};
    QVariant value = key.store->value(key.group + valueName);
    switch (value.typeId()) {
    case QMetaType::QString:
    case QMetaType::Int:
    case QMetaType::UInt:
        return value;
    default:
        return {};
    }
}
