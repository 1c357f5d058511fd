#include "platform/modRegistry.h"

#include "tests/platform/IniFile.h"
#include "tests/support/TempFolder.h"

namespace {

const auto ExportKey = QStringLiteral("Software\\Kestova\\Brisquent\\Export");

class Registry : public testing::Test {
protected:
    void SetUp() override { std::filesystem::remove_all(std::filesystem::path(IniFilePath()).parent_path()); }

    static void Set(const QString& key, const char* name, const QString& text) {
        SetKeyValue(RootKey::CurrentUser, key, QString::fromLatin1(name), text);
    }
    static QVariant Query(const QString& key, const char* name) {
        return QueryValue(RootKey::CurrentUser, key, QString::fromLatin1(name));
    }
};

} // namespace

TEST_F(Registry, AnswersNothingForWhatIsMissing) {
    EXPECT_FALSE(Query(ExportKey, "InitDir").isValid());
    Set(ExportKey, "FileType", QStringLiteral("1"));
    EXPECT_FALSE(Query(ExportKey, "InitDir").isValid());
    EXPECT_FALSE(Query(QStringLiteral("Software\\Kestova\\Brisquent\\Other"), "FileType").isValid());
    EXPECT_EQ(Query(ExportKey, "InitDir").toString(), QString());
}

TEST_F(Registry, KeepsTextsInTheSectionOfTheirKey) {
    Set(ExportKey, "InitDir", QStringLiteral("/maps/north/"));
    Set(QStringLiteral("Software\\Kestova\\Brisquent\\NewIcon"), "InitDir", QStringLiteral("/icons/"));
    EXPECT_EQ(IniFile().Value("Export", "InitDir"), "/maps/north/");
    EXPECT_EQ(IniFile().Value("NewIcon", "InitDir"), "/icons/");
    EXPECT_EQ(Query(ExportKey, "InitDir"), QVariant(QStringLiteral("/maps/north/")));
}

TEST_F(Registry, NeverWritesAnEmptyText) {
    Set(ExportKey, "InitDir", QString());
    EXPECT_TRUE(IniFile().IsEmpty());
    Set(ExportKey, "InitDir", QStringLiteral("/maps/"));
    Set(ExportKey, "InitDir", QString());
    EXPECT_EQ(IniFile().Value("Export", "InitDir"), "/maps/");
}

TEST_F(Registry, GivesBackEveryTextAsItWasWritten) {
    for (const char* const text :
         {"C:\\maps\\", "a,b", "@Invalid()", "@@x", "\"quoted\"", "  blanks  ", "semi;colon=equals", "äöü €",
          "%20", "[section]", "#no comment", "line\nend", "/ends/with\\"}) {
        Set(ExportKey, "InitDir", QString::fromUtf8(text));
        EXPECT_EQ(Query(ExportKey, "InitDir").typeId(), QMetaType::QString) << text;
        EXPECT_EQ(Query(ExportKey, "InitDir").toString().toStdString(), text);
    }
    Set(ExportKey, "InitDir", QStringLiteral("C:\\maps\\"));
    EXPECT_EQ(IniFile().Value("Export", "InitDir"), "C:\\maps\\");
}

TEST_F(Registry, ReadsWhatAnotherProgramWrote) {
    Set(ExportKey, "FileType", QStringLiteral("1"));
    std::filesystem::create_directories(std::filesystem::path(IniFilePath()).parent_path());
    WriteWholeFile(IniFilePath(), "[Export]\nFileType=23\nInitDir=/home/a b/\nList=a, b\n");
    EXPECT_EQ(Query(ExportKey, "FileType").toInt(), 23);
    EXPECT_EQ(Query(ExportKey, "InitDir").toString(), QStringLiteral("/home/a b/"));
    EXPECT_FALSE(Query(ExportKey, "List").isValid()) << "neither a text nor a number";
}

TEST_F(Registry, KnowsOtherApplicationsAndDeeperKeys) {
    Set(QStringLiteral("Software\\Kestova\\Other\\Key\\Below"), "Name", QStringLiteral("deep"));
    Set(QStringLiteral("Software\\Kestova\\Brisquent"), "Name", QStringLiteral("top"));
    EXPECT_EQ(IniFile("Kestova", "Other").Value("Key", "Below\\Name"), "deep");
    EXPECT_EQ(IniFile().Value("General", "Name"), "top");
    EXPECT_EQ(Query(QStringLiteral("Software\\Kestova\\Other\\Key\\Below"), "Name").toString(),
              QStringLiteral("deep"));
    EXPECT_EQ(Query(QStringLiteral("Software\\Kestova\\Brisquent"), "Name").toString(),
              QStringLiteral("top"));
}

TEST_F(Registry, ReadsThisKeyOnlyAndNotItsSurroundings) {
    Set(QStringLiteral("Software\\Kestova\\Brisquent"), "InitDir", QStringLiteral("/top/"));
    WriteWholeFile(std::string(std::getenv("XDG_CONFIG_HOME")) + "/Kestova.conf",
                   "[Export]\nInitDir=/all/\n");
    EXPECT_FALSE(Query(ExportKey, "InitDir").isValid());
}

TEST_F(Registry, IgnoresPathsWithoutAnApplication) {
    for (const char* const path : {"", "Software", "Software\\Kestova", "Kestova\\Brisquent\\Export"}) {
        const QString key = QString::fromLatin1(path);
        CreateNewKey(RootKey::CurrentUser, key);
        Set(key, "Name", QStringLiteral("x"));
        EXPECT_FALSE(Query(key, "Name").isValid()) << path;
    }
}

TEST_F(Registry, SaysNothingWhenTheStoreCannotBeWritten) {
    // A file where the folder should be stops every user, root included.
    WriteWholeFile(std::filesystem::path(IniFilePath()).parent_path(), "in the way");
    CreateNewKey(RootKey::CurrentUser, ExportKey);
    Set(ExportKey, "InitDir", QStringLiteral("/maps/"));
    EXPECT_EQ(ReadWholeFile(std::filesystem::path(IniFilePath()).parent_path()), "in the way");
}
