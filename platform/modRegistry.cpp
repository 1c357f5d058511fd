#include "platform/modRegistry.h"

#include <QSettings>
#include <QStringList>

#include <memory>

namespace {

struct OpenKey {
    std::unique_ptr<QSettings> store;
    QString group; ///< of the key within the store, ending in "/"; empty for the application's own key
};

/// Nothing for a path that does not reach down to an application.
OpenKey Open(RootKey root, const QString& keyPath) {
    QStringList parts = keyPath.split(u'\\', Qt::SkipEmptyParts);
    if (root != RootKey::CurrentUser || parts.size() < 3 || parts.takeFirst() != QStringLiteral("Software"))
        return {};
    const QString organisation = parts.takeFirst();
    const QString application = parts.takeFirst();
    OpenKey key{
        std::make_unique<QSettings>(QSettings::NativeFormat, QSettings::UserScope, organisation, application),
        parts.isEmpty() ? QString() : parts.join(u'/') + u'/'};
    // This key alone: Qt would look in the organisation's and in all users' settings as well.
    key.store->setFallbacksEnabled(false);
    return key;
}

} // namespace

void CreateNewKey(RootKey root, const QString& keyPath) {
    if (const OpenKey key = Open(root, keyPath); key.store != nullptr)
        key.store->sync();
}

void SetKeyValue(RootKey root, const QString& keyPath, const QString& valueName, const QString& text) {
    if (text.isEmpty())
        return;
    if (const OpenKey key = Open(root, keyPath); key.store != nullptr)
        key.store->setValue(key.group + valueName, text);
}

QVariant QueryValue(RootKey root, const QString& keyPath, const QString& valueName) {
    const OpenKey key = Open(root, keyPath);
    if (key.store == nullptr)
        return {};
    const QVariant value = key.store->value(key.group + valueName);
    switch (value.typeId()) {
    case QMetaType::QString:
    case QMetaType::Int:
    case QMetaType::UInt:
        return value;
    default:
        return {};
    }
}
