#include "dialogs/ExportNames.h"

#include "tests/support/TempFolder.h"

#include <sys/stat.h>

namespace {

QString Path(const std::filesystem::path& path) {
    return QString::fromStdString(path.string());
}

QString ErrorOfMakeDir(const QString& path) {
    QString errorText = QStringLiteral("from before");
    MakeDir(path, errorText);
    return errorText;
}

} // namespace

TEST(ExportNames, TellFilesFromFolders) {
    const TempFolder folder;
    WriteWholeFile(folder / "file", "x");
    std::filesystem::create_symlink(folder / "nothing", folder / "dangling");
    EXPECT_TRUE(FileExists(Path(folder / "file")));
    EXPECT_FALSE(FileExists(Path(folder.Path())));
    EXPECT_FALSE(FileExists(Path(folder / "missing")));
    EXPECT_FALSE(FileExists(Path(folder / "dangling")));
    EXPECT_FALSE(FileExists(QString()));
    EXPECT_TRUE(DirExists(Path(folder.Path())));
    EXPECT_FALSE(DirExists(Path(folder / "file")));
    EXPECT_FALSE(DirExists(Path(folder / "missing")));
    EXPECT_FALSE(DirExists(QString()));
}

TEST(ExportNames, CutAPathAtItsLastSeparator) {
    const auto cut = [](const char* path) {
        return ExtractFilePath(QString::fromLatin1(path)).toStdString();
    };
    EXPECT_EQ(cut("/home/me/tiles"), "/home/me");
    EXPECT_EQ(cut("/home/me/"), "/home/me");
    EXPECT_EQ(cut("/tiles"), "");
    EXPECT_EQ(cut("tiles"), "");
    EXPECT_EQ(cut(""), "");
    EXPECT_EQ(cut("C:\\maps\\tiles"), "C:\\maps");
    EXPECT_EQ(cut("C:\\maps\\"), "C:\\maps");
    EXPECT_EQ(cut("C:file"), "C:");
    EXPECT_EQ(cut("C:\\"), "C:");
    EXPECT_EQ(cut("C:\\odd:file"), "C:\\odd:");
    EXPECT_EQ(cut("/home/a\\b:c"), "/home") << "where there is a slash, nothing else separates";
}

TEST(ExportNames, MakeAFolderWithItsParents) {
    const TempFolder folder;
    const QString path = Path(folder / "one/two/three");
    EXPECT_EQ(ErrorOfMakeDir(path), QString());
    EXPECT_TRUE(DirExists(path));
    EXPECT_EQ(ErrorOfMakeDir(path), QString()) << "it is there already";
    EXPECT_EQ(ErrorOfMakeDir(path + QStringLiteral("/")), QString());
    EXPECT_EQ(ErrorOfMakeDir(Path(folder / "four/")), QString());
    EXPECT_TRUE(DirExists(Path(folder / "four")));
    EXPECT_EQ(ErrorOfMakeDir(QStringLiteral("/")), QString());
}

TEST(ExportNames, NameThePathThatCouldNotBeMade) {
    const TempFolder folder;
    WriteWholeFile(folder / "file", "x");
    EXPECT_EQ(ErrorOfMakeDir(Path(folder / "file/one/two")),
              QStringLiteral("Error Making ") + Path(folder / "file"))
        << "the first that is in the way, from the root down";
    EXPECT_EQ(ErrorOfMakeDir(Path(folder / "new" / std::string(300, 'x') / "deep")),
              QStringLiteral("Error Making ") + Path(folder / "new" / std::string(300, 'x')));
    EXPECT_TRUE(DirExists(Path(folder / "new")));
}

TEST(ExportNames, LeaveAPathWithoutASlashAlone) {
    EXPECT_EQ(ErrorOfMakeDir(QStringLiteral("quorvant-tiles")), QString());
    EXPECT_FALSE(DirExists(QStringLiteral("quorvant-tiles")));
    EXPECT_EQ(ErrorOfMakeDir(QStringLiteral("C:\\no\\such")), QString());
    EXPECT_EQ(ErrorOfMakeDir(QString()), QString());
    EXPECT_EQ(ErrorOfMakeDir(QStringLiteral("C:\\/tiles")), QStringLiteral("Error Making C:\\/tiles"));
}

TEST(ExportNames, TakeThousandsOfSlashes) {
    EXPECT_EQ(ErrorOfMakeDir(QString(4000, u'/')), QString());
    EXPECT_TRUE(ErrorOfMakeDir(QString(30000, u'/')).startsWith(QStringLiteral("Error Making //")));
}

TEST(ExportNames, AcceptPosixNamesOnly) {
    const auto is = [](const char* text) { return IsPosixFileSystemCompatible(QString::fromUtf8(text)); };
    EXPECT_TRUE(is("tile_01.png"));
    EXPECT_TRUE(is("ABCXYZabcxyz0189._-"));
    EXPECT_TRUE(is(""));
    for (const char* const text :
         {"a b", "\u00e9", "\u00c5", "a/b", "@", "[", "`", "{", ":", "\u0661", "\uff21", "\n"})
        EXPECT_FALSE(is(text)) << QString::fromUtf8(text).toStdString();
}

TEST(ExportNames, MakeANamePosixCompatible) {
    const auto made = [](const char* text) {
        return CreatePosixFileSystemCompatibleString(QString::fromUtf8(text)).toStdString();
    };
    EXPECT_EQ(made("  My map #1 "), "My_map__1");
    EXPECT_EQ(made("tile_01.png"), "tile_01.png");
    EXPECT_EQ(made(""), "");
    EXPECT_EQ(made("   "), "");
    EXPECT_EQ(made("#/\\?"), "____");
    EXPECT_EQ(made("\tname\n"), "_name_") << "blanks are spaces only";
    EXPECT_EQ(made("\u00c5rhus"), "_rhus");
    EXPECT_EQ(made("a\U0001F5FAb"), "a_b") << "one for each character";
    EXPECT_EQ(made("../../etc"), ".._.._etc");
}
