#include "tests/app/ShellFixture.h"
#include "tests/support/RunProgram.h"
#include "tests/support/desktop/ExpectedTexts.h"

namespace {

/// A library named on the command line.
class CommandLine : public ShellTest {
protected:
    /// The program with this argument where there is no display, without which it cannot show a window.
    static ProgramResult RunWithoutDisplay(const char* argument) {
        return RunProgram({"timeout", "60", "env", "-u", "DISPLAY", "-u", "WAYLAND_DISPLAY",
                           "QT_QPA_PLATFORM=xcb", BUILD_DIR "/quorvant-studio", argument});
    }
};

} // namespace

TEST_F(CommandLine, ByCommandLine) {
    const std::string file = MakeLibrary("with blanks in it.Atlavex", {{20, 30}});
    Start(QString::fromStdString(file));
    EXPECT_EQ(Title(), "Quorvant Studio - " + file);
    EXPECT_EQ(TextOf("lbSize"), "Bitmap size: (20, 30)");
    EXPECT_TRUE(IsEnabled("mBitmapDelete"));
}

TEST_F(CommandLine, ByCommandLineInQuotes) {
    const std::string file = MakeLibrary("a.Atlavex", {{20, 30}});
    Start(QString::fromStdString("\"" + file + "\""));
    EXPECT_EQ(Title(), "Quorvant Studio - " + file);
}

TEST_F(CommandLine, ByCommandLineCutsTheLastCharacterWhateverItIs) {
    const std::string file = MakeLibrary("a.Atlavex", {{20, 30}});
    Start(QString::fromStdString("\"" + file + "x"));
    EXPECT_EQ(Title(), "Quorvant Studio - " + file);
}

TEST_F(CommandLine, ALoneQuoteOnTheCommandLineIsNothing) {
    Start(QStringLiteral("\""));
    EXPECT_EQ(Title(), PlainTitle);
    EXPECT_EQ(State().objAtlavex, nullptr);
    EXPECT_EQ(TextOf("lHeader"), "Header");
}

TEST_F(CommandLine, ByCommandLineASealedFileAsksBeforeTheWindowIsShown) {
    const std::string file = MakeLibrary("a.Atlavex", {{20, 30}}, 0, "sesame");
    Expecting().Expect(QStringLiteral("InputBox"), [](QWidget& window) {
        for (const QWidget* const top : QApplication::topLevelWidgets())
            EXPECT_FALSE(top->objectName() == QStringLiteral("frmMain") && top->isVisible());
        TypeInto(window, "txtInput", QStringLiteral("sesame"));
        QTest::keyClick(&Control<QLineEdit>(window, "txtInput"), Qt::Key_Return);
    });
    Start(QString::fromStdString(file));
    EXPECT_EQ(Title(), "Quorvant Studio - " + file);
    EXPECT_EQ(State().encryptionKey, QStringLiteral("sesame"));
}

TEST_F(CommandLine, ByCommandLineAMissingFileIsSaid) {
    Expecting().ExpectBox(QString::fromStdString("There is no file '" + PathOf("none.Atlavex") + "'."));
    Start(QString::fromStdString(PathOf("none.Atlavex")));
    EXPECT_EQ(Title(), PlainTitle);
    EXPECT_NE(State().objAtlavex, nullptr);
    EXPECT_TRUE(IsEnabled("mFileSaveAtlavex"));
}

TEST_F(CommandLine, ByCommandLineARelativePathIsOfThePresentFolder) {
    const std::string file = MakeLibrary("two words.Atlavex", {{20, 30}});
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(std::filesystem::path(file).parent_path());
    for (const char* const name :
         {"two words.Atlavex", "\"two words.Atlavex\"", "./scratch/../two words.Atlavex"}) {
        Start(QString::fromLatin1(name));
        EXPECT_EQ(State().currentMap->Width(), 20) << name;
        EXPECT_TRUE(State().fileName.startsWith(u'/')) << name;
    }
    std::filesystem::current_path(before);
    // The path still leads to the file from elsewhere.
    Choose("mFileSaveAtlavex");
    EXPECT_FALSE(State().modified);
}

TEST_F(CommandLine, VersionAndHelpAloneAreAnsweredWithoutADisplay) {
    const ProgramResult version = RunWithoutDisplay("--version");
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.out, "Quorvant Studio 2.31.0\n");
    EXPECT_EQ(version.err, "");
    const ProgramResult help = RunWithoutDisplay("--help");
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.out, testing::StartsWith("Usage: quorvant-studio [FILE.Atlavex]\n"));
    EXPECT_EQ(help.err, "");
}

TEST_F(CommandLine, AFileOfThatNameIsALibrary) {
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(std::filesystem::path(MakeLibrary("--version", {{20, 30}})).parent_path());
    const ProgramResult answer = RunWithoutDisplay("--version");
    EXPECT_NE(answer.status, 0) << "It wants to show a window.";
    EXPECT_EQ(answer.out, "");
    Start(QStringLiteral("--version"));
    EXPECT_EQ(TextOf("lbSize"), "Bitmap size: (20, 30)");
    std::filesystem::current_path(before);
    for (const char* const other : {"", "--versions", "-h", "a.Atlavex"})
        EXPECT_EQ(RunWithoutDisplay(other).out, "") << other;
}
