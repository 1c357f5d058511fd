#include "platform/modBrowseFolder.h"

#include "tests/support/TempFolder.h"
#include "tests/support/desktop/ModalScript.h"

namespace {

class FolderBrowser : public testing::Test {
protected:
    void SetUp() override { std::filesystem::create_directory(folder_ / "tiles"); }

    QString Path(const char* name) const { return QString::fromStdString((folder_ / name).string()); }
    /// What the dialog shows; then a path is typed and Enter pressed, or Escape for nothing.
    void Answer(const QString& typed, Qt::Key key = Qt::Key_Return) {
        script_.Expect(QStringLiteral("FolderDialog"), [this, typed, key](QWidget& window) {
            auto& dialog = dynamic_cast<QFileDialog&>(window);
            title_ = dialog.windowTitle();
            opened_ = dialog.directory().path();
            EXPECT_TRUE(dialog.testOption(QFileDialog::ShowDirsOnly));
            auto* const field = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
            ASSERT_NE(field, nullptr);
            field->setText(typed);
            QTest::keyClick(key == Qt::Key_Return ? static_cast<QWidget*>(field) : &dialog, key);
        });
    }

    TempFolder folder_;
    ModalScript script_;
    QString title_;
    QString opened_;
};

} // namespace

TEST_F(FolderBrowser, StartsInThePreselectedFolderAndChoosesItByEnter) {
    Answer(QString());
    EXPECT_EQ(BrowseForFolder(nullptr, QStringLiteral("Select output folder for tiles"), Path("tiles")),
              Path("tiles"));
    EXPECT_EQ(title_, QStringLiteral("Select output folder for tiles"));
    EXPECT_EQ(opened_, Path("tiles"));
}

TEST_F(FolderBrowser, GivesTheTypedFolder) {
    Answer(Path("tiles"));
    EXPECT_EQ(BrowseForFolder(nullptr, QStringLiteral("Folder"), QString()), Path("tiles"));
}

TEST_F(FolderBrowser, GivesNothingWhenCancelled) {
    Answer(Path("tiles"), Qt::Key_Escape);
    EXPECT_EQ(BrowseForFolder(nullptr, QStringLiteral("Folder"), Path("tiles")), QString());
}

TEST_F(FolderBrowser, StartsAtHomeWithoutAFolderThatExists) {
    for (const QString& preselect : {QString(), Path("gone"), QStringLiteral("C:\\")}) {
        Answer(QString(), Qt::Key_Escape);
        BrowseForFolder(nullptr, QStringLiteral("Folder"), preselect);
        EXPECT_EQ(opened_, QDir::homePath()) << preselect.toStdString();
    }
}

TEST_F(FolderBrowser, TakesNoFileAndNoFolderThatIsMissing) {
    WriteWholeFile(folder_ / "file", "x");
    Answer(Path("gone"));
    script_.Expect(QStringLiteral("QMessageBox"), [this](QWidget& box) {
        QTest::keyClick(&box, Qt::Key_Escape);
        auto* const dialog = qobject_cast<QFileDialog*>(box.parentWidget());
        ASSERT_NE(dialog, nullptr);
        auto* const field = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        QTimer::singleShot(0, dialog, [dialog, field, file = Path("file")] {
            field->setText(file);
            QTest::keyClick(field, Qt::Key_Return);
            EXPECT_TRUE(dialog->isVisible()) << "a file is no folder";
            dialog->reject();
        });
    });
    EXPECT_EQ(BrowseForFolder(nullptr, QStringLiteral("Folder"), QString()), QString());
}
