#include "app/ImageNames.h"

#include "component/ObjectTexts.h"

#include <QFileInfo>

QString ProposedName(const QString& fileName) {
    return QString::fromStdString(NameFromFile(fileName.toStdString()));
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
