#include "dialogs/frmExport.h"

#include "platform/modGUID.h"
#include "platform/modRegistry.h"
#include "tests/component/LibraryFixture.h"
#include "tests/support/desktop/Controls.h"
#include "tests/support/desktop/ExpectedTexts.h"
#include "tests/support/desktop/ModalScript.h"

#include <sys/stat.h>

namespace {

const auto ExportKey = QStringLiteral("Software\\Kestova\\Brisquent\\Export");
constexpr const char* Identifier = "01234567-89AB-CDEF-0123-456789ABCDEF";

void Remember(const char* name, const QString& value) {
    SetKeyValue(RootKey::CurrentUser, ExportKey, QString::fromLatin1(name), value);
}

QString Remembered(const char* name) {
    return QueryValue(RootKey::CurrentUser, ExportKey, QString::fromLatin1(name)).toString();
}

class Export : public LibraryTest {
protected:
    Export()
        : library_(NewLibrary()), map_(AddMap(*library_, MakeSheet(PixelFormat::Rgb, 300, 200), "North")) {
        map_->SetIdentifier(Identifier);
        QSettings(QStringLiteral("Kestova"), QStringLiteral("Brisquent")).clear();
        std::filesystem::create_directory(OutputFolder());
    }

    std::filesystem::path OutputFolder() const { return PathOf("tiles"); }
    QString Output() const { return QString::fromStdString(OutputFolder().string()); }
    std::filesystem::path Exported(const std::string& name) const {
        return OutputFolder() / (map_->Identifier() + "_" + name);
    }

    void Run(const std::function<void(QWidget&)>& act) {
        script_.Expect(QStringLiteral("frmExport"), act);
        form_.Map = map_;
        form_.exec();
        EXPECT_FALSE(form_.isVisible());
    }

    /// Exports under the name into the folder, which has to succeed.
    void ExportAs(const QString& name, const QString& folder) {
        Run([&](QWidget& window) {
            TypeInto(window, "tbName", name);
            TypeInto(window, "tbExportTo", folder);
            script_.ExpectBox(ExportCompleted);
            Click(window, "btnExport");
        });
    }

    /// Exports into the folder, which has to fail with the sentence; the dialog stays usable.
    void ExpectFailure(const QString& folder, const QString& sentence) {
        Run([&](QWidget& window) {
            TypeInto(window, "tbExportTo", folder);
            script_.ExpectBox(sentence);
            Click(window, "btnExport");
            EXPECT_TRUE(window.isVisible());
            EXPECT_TRUE(window.isEnabled());
            EXPECT_TRUE(Control<QPushButton>(window, "btnExport").isEnabled());
            EXPECT_TRUE(Control<QPushButton>(window, "btnCancel").isEnabled());
            EXPECT_EQ(Remembered("InitDir"), QString()) << "nothing is remembered of a failed export";
            Click(window, "btnCancel");
        });
    }

    ModalScript script_;
    std::unique_ptr<AtlavexLibrary> library_;
    std::shared_ptr<AtlavexMap> map_;
    frmExport form_;
};

} // namespace

TEST_F(Export, HasItsControls) {
    EXPECT_EQ(form_.windowTitle(), QStringLiteral("Export Tile Images"));
    EXPECT_EQ(Control<QLabel>(form_, "lbName").text(), QStringLiteral("Name:"));
    EXPECT_EQ(Control<QLabel>(form_, "lbImageFormat").text(), QStringLiteral("Image format:"));
    EXPECT_EQ(Control<QLabel>(form_, "lbExportTo").text(), QStringLiteral("Export to:"));
    EXPECT_EQ(Control<QPushButton>(form_, "btnBrowse").text(), QStringLiteral("Browse"));
    EXPECT_EQ(Control<QPushButton>(form_, "btnExport").text(), QStringLiteral("Export"));
    EXPECT_EQ(Control<QPushButton>(form_, "btnCancel").text(), QStringLiteral("Cancel"));
    const auto& formats = Control<QComboBox>(form_, "cbImageFormat");
    ASSERT_EQ(formats.count(), 1);
    EXPECT_EQ(formats.itemText(0), QStringLiteral("png"));
}

TEST_F(Export, OpensWithTheMapsNameAndTheDefaults) {
    Run([this](QWidget& window) {
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        EXPECT_EQ(Control<QLineEdit>(window, "tbName").text(), QStringLiteral("North"));
        EXPECT_EQ(Control<QLineEdit>(window, "tbExportTo").text(), QStringLiteral("C:\\"));
        EXPECT_EQ(Control<QComboBox>(window, "cbImageFormat").currentIndex(), 0);
        EXPECT_EQ(TabOrder(window), (QStringList{"tbName", "cbImageFormat", "tbExportTo", "btnBrowse",
                                                 "btnExport", "btnCancel"}));
        Click(window, "btnCancel");
    });
    EXPECT_EQ(form_.InitDir, QStringLiteral("C:\\"));
    EXPECT_EQ(form_.FileType, 0);
}

TEST_F(Export, RemembersFolderAndFormat) {
    Remember("InitDir", QStringLiteral("/some/where"));
    const std::vector<std::pair<const char*, int>> stored{{"0", 0}, {"1", 1},  {"3", 3},
                                                          {"4", 0}, {"-1", 0}, {"png", 0}};
    for (const auto& [text, fileType] : stored) {
        Remember("FileType", QString::fromLatin1(text));
        Run([](QWidget& window) {
            EXPECT_EQ(Control<QLineEdit>(window, "tbExportTo").text(), QStringLiteral("/some/where"));
            EXPECT_EQ(Control<QComboBox>(window, "cbImageFormat").currentText(), QStringLiteral("png"))
                << "a format past the end of the list is the first";
            QTest::keyClick(&window, Qt::Key_Escape);
        });
        EXPECT_EQ(form_.FileType, fileType) << text;
    }
}

TEST_F(Export, WritesTheTilesAndRemembersTheFolder) {
    ExportAs(QStringLiteral("  My map #1 "), Output());
    for (const char* const name : {"0/0/0.png", "1/1/0.png", "tiles.json", "map.vrt", "index.html"})
        EXPECT_TRUE(std::filesystem::exists(Exported("My_map__1") / name)) << name;
    EXPECT_EQ(Remembered("InitDir"), Output());
    EXPECT_EQ(Remembered("FileType"), QStringLiteral("0"));
    EXPECT_EQ(map_->Identifier(), Identifier) << "a GUID stays";
    EXPECT_EQ(map_->Name(), "North") << "the name is the export's, not the map's";
}

TEST_F(Export, MakesMissingFoldersAndTakesANameOfNothing) {
    ExportAs(QStringLiteral("   "), Output() + QStringLiteral("/new/deep"));
    EXPECT_TRUE(std::filesystem::exists(OutputFolder() / "new/deep" / (std::string(Identifier) + "_") /
                                        "tiles.json"));
    ExportAs(QStringLiteral("?/\\"), Output() + QStringLiteral("/"));
    EXPECT_TRUE(std::filesystem::exists(Exported("___") / "tiles.json"));
}

TEST_F(Export, GivesAMapWithoutAGuidANewOne) {
    for (const char* const identifier : {"", "no guid", "{01234567-89AB-CDEF-0123-456789ABCDEF}"}) {
        map_->SetIdentifier(identifier);
        ExportAs(QStringLiteral("n"), Output());
        EXPECT_TRUE(IsGUIDText(map_->Identifier())) << map_->Identifier();
        EXPECT_EQ(map_->Identifier().size(), 36u);
        EXPECT_TRUE(std::filesystem::exists(Exported("n") / "tiles.json"));
    }
}

TEST_F(Export, OverwritesItsOwnTilesAndLeavesAnotherMapsAlone) {
    ExportAs(QStringLiteral("n"), Output());
    ExportAs(QStringLiteral("n"), Output());
    const auto description = Exported("n") / "tiles.json";
    std::string text = ReadWholeFile(description);
    text.replace(text.find(Identifier), 4, "ABCD");
    WriteWholeFile(description, text);
    QSettings(QStringLiteral("Kestova"), QStringLiteral("Brisquent")).clear();
    map_->SetMetadata("name", "n");
    ExpectFailure(Output(), QString::fromStdString("The folder \"" + Exported("n").string() +
                                                   "/\" holds the tiles of another map."));
    EXPECT_EQ(ReadWholeFile(description), text);
}

TEST_F(Export, SaysWhyItFailedAndNeverCompleted) {
    WriteWholeFile(PathOf("file"), "x");
    const QString name = QStringLiteral("/") + QString::fromLatin1(Identifier) + QStringLiteral("_North/");
    const QString file = QString::fromStdString(PathOf("file"));
    ExpectFailure(file, QStringLiteral("The folder \"") + file + name +
                            QStringLiteral("\" cannot be used: Not a directory."));
    ExpectFailure(QStringLiteral("C:\\"),
                  QStringLiteral("The folder \"C:\\") + name +
                      QStringLiteral("\" cannot be used: No such file or directory."));
    const QString noParent = QStringLiteral("relative-folder-that-is-not-there");
    ExpectFailure(noParent, QStringLiteral("The folder \"") + noParent + name +
                                QStringLiteral("\" cannot be used: No such file or directory."));
}

TEST_F(Export, SaysThatAFileIsInTheWay) {
    std::filesystem::create_directories(Exported("North"));
    WriteWholeFile(Exported("North") / "0", "x");
    ExpectFailure(Output(), QString::fromStdString("\"" + (Exported("North") / "0").string() +
                                                   "\" cannot be written: File exists."));
    EXPECT_NE(ReadWholeFile(Exported("North") / "tiles.json").find("\"complete\": false"), std::string::npos)
        << ReadWholeFile(Exported("North") / "tiles.json");
}

TEST_F(Export, SaysThatItsFolderWentAwayMeanwhile) {
    library_->OnProgress = [this](float) { std::filesystem::remove_all(OutputFolder()); };
    Run([this](QWidget& window) {
        TypeInto(window, "tbExportTo", Output());
        script_.Expect(QStringLiteral("MessageBox"), [this](QWidget& box) {
            const QString text = dynamic_cast<QMessageBox&>(box).text();
            EXPECT_TRUE(text.contains(QLatin1Char('"') + Output())) << text.toStdString();
            EXPECT_TRUE(text.endsWith(QStringLiteral(": No such file or directory."))) << text.toStdString();
            QTest::keyClick(&box, Qt::Key_Return);
        });
        Click(window, "btnExport");
        EXPECT_TRUE(window.isVisible());
        Click(window, "btnCancel");
    });
}

TEST_F(Export, TakesNoInputWhileItRuns) {
    int events = 0;
    library_->OnProgress = [&](float) {
        ++events;
        EXPECT_FALSE(Control<QPushButton>(form_, "btnExport").isEnabled());
        EXPECT_FALSE(Control<QPushButton>(form_, "btnCancel").isEnabled());
        EXPECT_FALSE(Control<QLineEdit>(form_, "tbExportTo").isEnabled());
        QTest::keyClick(&form_, Qt::Key_Escape);
        QTest::keyClick(&form_, Qt::Key_Return);
        Click(form_, "btnCancel");
        form_.close();
        EXPECT_TRUE(form_.isVisible());
    };
    ExportAs(QStringLiteral("n"), Output());
    EXPECT_GT(events, 0);
}

TEST_F(Export, CancelledIsAFailureWithItsOwnSentence) {
    library_->OnProgress = [this](float) { library_->CancelOperation(); };
    ExpectFailure(Output(), QStringLiteral("The operation was cancelled."));
}

TEST_F(Export, SaysWhateverElseWentWrong) {
    form_.AroundExport = [](const std::function<void()>&) { throw std::runtime_error("Out of order."); };
    ExpectFailure(Output(), QStringLiteral("Out of order."));
}

TEST_F(Export, RunsInsideWhatItsOwnerPutsAround) {
    QStringList order;
    form_.AroundExport = [&order](const std::function<void()>& work) {
        order.append(QStringLiteral("before"));
        work();
        order.append(QStringLiteral("after"));
    };
    library_->OnProgressBegin = [&order](float, AtlavexLibrary&) { order.append(QStringLiteral("export")); };
    ExportAs(QStringLiteral("n"), Output());
    EXPECT_EQ(order, (QStringList{"before", "export", "after"}));
}

TEST_F(Export, BrowsesForAFolder) {
    Remember("InitDir", Output());
    std::filesystem::create_directory(OutputFolder() / "chosen");
    Run([this](QWidget& window) {
        script_.Expect(QStringLiteral("FolderDialog"), [](QWidget& chooser) {
            EXPECT_EQ(chooser.windowTitle(), QStringLiteral("Select output folder for tiles"));
            chooser.close();
        });
        Click(window, "btnBrowse");
        EXPECT_EQ(Control<QLineEdit>(window, "tbExportTo").text(), Output()) << "cancelled";
        script_.Expect(QStringLiteral("FolderDialog"), [this](QWidget& chooser) {
            auto& dialog = dynamic_cast<QFileDialog&>(chooser);
            EXPECT_EQ(dialog.directory().absolutePath(), Output());
            auto& field = Control<QLineEdit>(chooser, "fileNameEdit");
            field.setText(Output() + QStringLiteral("/chosen"));
            QTest::keyClick(&field, Qt::Key_Return);
        });
        Click(window, "btnBrowse");
        EXPECT_EQ(Control<QLineEdit>(window, "tbExportTo").text(), Output() + QStringLiteral("/chosen"));
        Click(window, "btnCancel");
    });
    EXPECT_EQ(Remembered("InitDir"), Output()) << "only an export is remembered";
}
