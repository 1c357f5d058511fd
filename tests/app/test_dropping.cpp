#include "tests/app/ShellFixture.h"

#include <QDropEvent>
#include <QMimeData>

namespace {

/// Files dropped on the window.
class Dropping : public ShellTest {
protected:
    /// Whether the window takes it.
    bool Drop(const QList<QUrl>& urls) {
        QMimeData data;
        data.setUrls(urls);
        QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&Window(), &enter);
        if (!enter.isAccepted())
            return false;
        QDropEvent drop(QPointF(50, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&Window(), &drop);
        QApplication::processEvents();
        return drop.isAccepted();
    }
    /// What the window makes of a drop when another action is proposed, as a file manager does while Shift is
    /// held.
    Qt::DropAction ActionOf(const std::string& file, Qt::DropAction proposed, Qt::DropActions possible) {
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(QString::fromStdString(file))});
        const auto taken = [this, proposed](QDropEvent& event) {
            event.setDropAction(proposed);
            event.ignore();
            QApplication::sendEvent(&Window(), &event);
            return event.isAccepted() ? event.dropAction() : Qt::IgnoreAction;
        };
        QDragEnterEvent enter(QPoint(50, 50), possible, &data, Qt::LeftButton, Qt::ShiftModifier);
        QDragMoveEvent move(QPoint(60, 50), possible, &data, Qt::LeftButton, Qt::ShiftModifier);
        QDropEvent drop(QPointF(60, 50), possible, &data, Qt::LeftButton, Qt::ShiftModifier);
        const Qt::DropAction entered = taken(enter);
        if (entered == Qt::IgnoreAction)
            return entered;
        EXPECT_EQ(taken(move), entered);
        EXPECT_EQ(taken(drop), entered);
        QApplication::processEvents();
        return entered;
    }
    bool Drop(const std::string& file) { return Drop({QUrl::fromLocalFile(QString::fromStdString(file))}); }
};

} // namespace

TEST_F(Dropping, ALibraryIsOpened) {
    const std::string file = MakeLibrary("a.Atlavex", {{20, 30}});
    Start();
    EXPECT_TRUE(Drop(file));
    EXPECT_EQ(Title(), "Quorvant Studio - " + file);
    EXPECT_EQ(TextOf("lbSize"), "Bitmap size: (20, 30)");
}

TEST_F(Dropping, ALibraryIsKnownInEitherLetterCase) {
    const std::string file = MakeLibrary("a.ATLAVEX", {{20, 30}});
    Start();
    EXPECT_TRUE(Drop(file));
    EXPECT_EQ(Title(), "Quorvant Studio - " + file);
}

TEST_F(Dropping, IsACopyAndNeverAMove) {
    const std::string file = MakeLibrary("a.Atlavex", {{20, 30}});
    Start();
    EXPECT_EQ(ActionOf(file, Qt::MoveAction, Qt::CopyAction | Qt::MoveAction | Qt::LinkAction),
              Qt::CopyAction);
    EXPECT_EQ(Title(), "Quorvant Studio - " + file);
    EXPECT_EQ(ActionOf(file, Qt::MoveAction, Qt::MoveAction), Qt::IgnoreAction);
}

TEST_F(Dropping, ALibraryIsOpenedAfterTheQuestion) {
    const std::string file = MakeLibrary("a.Atlavex", {{20, 30}}, 1);
    const std::string other = MakeLibrary("b.Atlavex", {{25, 35}});
    Start();
    OpenByMenu(file);
    Edit();
    ExpectSaveQuestion(QMessageBox::Cancel);
    EXPECT_TRUE(Drop(other));
    EXPECT_EQ(Title(), "Quorvant Studio - " + file);
    ExpectSaveQuestion(QMessageBox::Yes);
    EXPECT_TRUE(Drop(other));
    EXPECT_EQ(Title(), "Quorvant Studio - " + other);
}

TEST_F(Dropping, AnImageBecomesAMapOnTheMapPage) {
    const std::string image = ImageOf(MakeSheet(PixelFormat::Rgb, 33, 22));
    Start();
    Expecting().Expect(QStringLiteral("frmNewMap"), [](QWidget& window) { Click(window, "btnOK"); });
    ExpectWizardGivenUp();
    EXPECT_TRUE(Drop(image));
    EXPECT_EQ(EntriesOf("ddMaps").size(), 1);
    EXPECT_EQ(State().currentMap->Width(), 33);
}

TEST_F(Dropping, AnImageBecomesAnIconOnTheIconPage) {
    const std::string image = ImageOf(MakeSheet(PixelFormat::Rgba, 12, 11));
    Start();
    ClickTab(1);
    Expecting().Expect(QStringLiteral("frmNewMap"), [](QWidget& window) { Click(window, "btnOK"); });
    EXPECT_TRUE(Drop(image));
    EXPECT_EQ(EntriesOf("ddIcons").size(), 1);
    EXPECT_EQ(TextOf("lbSize"), "Icon size: (12, 11)");
}

TEST_F(Dropping, SeveralFilesAndOtherThingsAreNotTaken) {
    const auto file = QUrl::fromLocalFile(QString::fromStdString(MakeLibrary("a.Atlavex", {{20, 30}})));
    Start();
    EXPECT_FALSE(Drop(QList<QUrl>{file, file}));
    EXPECT_FALSE(Drop(QList<QUrl>{QUrl(QStringLiteral("https://example.org/a.Atlavex"))}));
    EXPECT_FALSE(Drop(QList<QUrl>{}));
    EXPECT_EQ(State().objAtlavex, nullptr);
}

TEST_F(Dropping, WhileAQuestionIsOpenNothingIsTaken) {
    const std::string file = MakeLibrary("a.Atlavex", {{20, 30}}, 1);
    const std::string other = MakeLibrary("b.Atlavex", {{25, 35}});
    Start();
    OpenByMenu(file);
    Edit();
    Expecting().Expect(QStringLiteral("MessageBox"), [&](QWidget& window) {
        EXPECT_FALSE(Drop(other));
        QTest::mouseClick(dynamic_cast<QMessageBox&>(window).button(QMessageBox::Cancel), Qt::LeftButton);
    });
    Choose("mFileNewAtlavex");
    EXPECT_EQ(Title(), "Quorvant Studio - " + file);
}
