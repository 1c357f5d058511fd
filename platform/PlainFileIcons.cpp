#include "platform/PlainFileIcons.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QFileIconProvider>

namespace {

/// Says what a thing is from what is known without opening it.
class PlainIcons : public QFileIconProvider {
public:
    using QFileIconProvider::icon;
    QIcon icon(const QFileInfo& info) const override {
        return QFileIconProvider::icon(info.isDir() ? IconType::Folder : IconType::File);
    }
    QString type(const QFileInfo& info) const override {
        if (info.isDir())
            return QCoreApplication::translate("QAbstractFileIconProvider", "Folder");
        const QString ending = info.suffix();
        return ending.isEmpty()
                   ? QCoreApplication::translate("QAbstractFileIconProvider", "File")
                   : QCoreApplication::translate("QAbstractFileIconProvider", "%1 File").arg(ending);
    }
};

/// Keeps the icons for a dialog: Qt ends a window's children in the order in which they came, so they outlast
/// the list of files, whose thread asks for them.
class IconsOfDialog : public QObject {
public:
    using QObject::QObject;
    PlainIcons icons;
};

} // namespace

void ShowPlainFileIcons(QFileDialog& dialog) {
    if (dynamic_cast<const PlainIcons*>(dialog.iconProvider()) == nullptr)
        dialog.setIconProvider(&(new IconsOfDialog(&dialog))->icons);
}
