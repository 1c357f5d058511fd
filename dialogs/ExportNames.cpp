#include "dialogs/ExportNames.h"

#include "platform/modFields.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace {

bool IsCompatible(char32_t character) {
    return (character >= U'A' && character <= U'Z') || (character >= U'a' && character <= U'z') ||
           (character >= U'0' && character <= U'9') || character == U'.' || character == U'_' ||
           character == U'-';
}

} // namespace

bool FileExists(const QString& path) {
    const QFileInfo file(path);
    return file.exists() && !file.isDir();
}

bool DirExists(const QString& path) {
    return QFileInfo(path).isDir();
}

QString ExtractFilePath(const QString& path) {
    if (const qsizetype slash = path.lastIndexOf(u'/'); slash >= 0)
        return path.left(slash);
    const qsizetype backslash = path.lastIndexOf(u'\\');
    const qsizetype colon = path.lastIndexOf(u':');
    return colon > backslash ? path.left(colon + 1) : path.left(std::max<qsizetype>(backslash, 0));
}

void MakeDir(const QString& path, QString& errorText) {
    errorText.clear();
    qsizetype slash = path.indexOf(u'/');
    while (slash >= 0 && errorText.isEmpty()) {
        slash = path.indexOf(u'/', slash + 1);
        const QString folder = slash < 0 ? path : path.left(slash);
        if (!DirExists(folder) && !QDir().mkdir(folder))
            errorText = QStringLiteral("Error Making ") + folder;
    }
}

bool IsPosixFileSystemCompatible(const QString& text) {
    return std::ranges::all_of(text.toStdU32String(), IsCompatible);
}

QString CreatePosixFileSystemCompatibleString(const QString& text) {
    std::u32string name = WithoutOuterBlanks(text).toStdU32String();
    std::ranges::replace_if(
        name, [](char32_t character) { return !IsCompatible(character); }, U'_');
    return QString::fromStdU32String(name);
}
