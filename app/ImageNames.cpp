#include "app/ImageNames.h"

#include <QFileInfo>

QString ProposedName(const QString& fileName) {
    qsizetype separator = fileName.lastIndexOf(u'/');
    if (separator < 0)
        separator = fileName.lastIndexOf(u'\\');
    const QString name = fileName.mid(separator + 1);
    return name.left(name.indexOf(u'.')); // all of it when there is none
}

QString WorldfileFor(const QString& fileName) {
    const qsizetype extension = fileName.lastIndexOf(u'.') + 1;
    const QString text = fileName.mid(extension);
    if (extension == 0 || (text != QStringLiteral("tif") && text != QStringLiteral("tiff")))
        return {};
    return fileName.left(extension) + QStringLiteral("tfw");
}

bool IsPlainFile(const QString& path) {
    const QFileInfo file(path);
    return file.isFile() && !file.isHidden();
}
