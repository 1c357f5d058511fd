#include "dialogs/frmNewMap.h"

#include "tests/support/desktop/Controls.h"
#include "tests/support/desktop/ModalScript.h"

namespace {

QStringList Entries(const QComboBox& list) {
    QStringList entries;
    for (int position = 0; position < list.count(); ++position)
        entries.append(list.itemText(position));
    return entries;
}

class NewMap : public testing::Test {
protected:
    /// Shows the dialog; `act` has to end it.
    void Run(const std::function<void(QWidget&)>& act) {
        script_.Expect(QStringLiteral("frmNewMap"), act);
        form_.exec();
    }

    ModalScript script_;
    frmNewMap form_;
};

} // namespace

TEST_F(NewMap, HasItsControls) {
    EXPECT_EQ(form_.windowTitle(), QStringLiteral("New map settings..."));
    EXPECT_EQ(Control<QGroupBox>(form_, "fGeneral").title(), QStringLiteral("General"));
    EXPECT_EQ(Control<QGroupBox>(form_, "Frame1").title(), QStringLiteral("Tile size:"));
    EXPECT_EQ(Control<QLabel>(form_, "Label1").text(), QStringLiteral("Name:"));
    EXPECT_EQ(Control<QLabel>(form_, "lbDescription").text(), QStringLiteral("Description:"));
    EXPECT_EQ(Control<QLabel>(form_, "lbSegWidth").text(), QStringLiteral("Width:"));
    EXPECT_EQ(Control<QLabel>(form_, "lbHeight").text(), QStringLiteral("Height:"));
    EXPECT_EQ(Control<QLabel>(form_, "lbWarning").text(),
              QStringLiteral("Warning: Tile sizes other than 256 are not supported in older versions of "
                             "Quorvant and Quorvant Studio."));
    EXPECT_EQ(Control<QPushButton>(form_, "btnOK").text(), QStringLiteral("OK"));
    EXPECT_EQ(Control<QPushButton>(form_, "btnCancel").text(), QStringLiteral("Cancel"));
    const QStringList sides{"64", "128", "256", "512", "1024"};
    EXPECT_EQ(Entries(Control<QComboBox>(form_, "ddTileWidth")), sides);
    EXPECT_EQ(Entries(Control<QComboBox>(form_, "ddTileHeight")), sides);
}

TEST_F(NewMap, Preselects256WhereNothingIsSelected) {
    EXPECT_EQ(Control<QComboBox>(form_, "ddTileWidth").currentIndex(), -1);
    form_.SetTile(QStringLiteral("1024"), QStringLiteral("none of these"));
    Run([this](QWidget& window) {
        EXPECT_EQ(Control<QComboBox>(window, "ddTileWidth").currentText(), QStringLiteral("1024"));
        EXPECT_EQ(Control<QComboBox>(window, "ddTileHeight").currentText(), QStringLiteral("256"));
        Click(window, "btnOK");
    });
    EXPECT_EQ(form_.TileWidth(), 1024);
    EXPECT_EQ(form_.TileHeight(), 256);
}

TEST_F(NewMap, OpensWithTheWholeNameSelectedAndFocused) {
    form_.SetName(QStringLiteral("north"));
    Run([](QWidget& window) {
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        EXPECT_EQ(QApplication::focusWidget(), &Control<QLineEdit>(window, "tbName"));
        EXPECT_EQ(Control<QLineEdit>(window, "tbName").selectedText(), QStringLiteral("north"));
        EXPECT_EQ(TabOrder(window), (QStringList{"tbName", "tbDescription", "ddTileWidth", "ddTileHeight",
                                                 "btnOK", "btnCancel"}));
        Click(window, "btnCancel");
    });
}

TEST_F(NewMap, GivesBackWhatWasTypedAndChosen) {
    EXPECT_FALSE(form_.OK());
    Run([](QWidget& window) {
        TypeInto(window, "tbName", QStringLiteral("My map"));
        TypeInto(window, "tbDescription", QStringLiteral("All of it"));
        QTest::keyClick(&Control<QComboBox>(window, "ddTileWidth"), Qt::Key_Down);
        QTest::keyClick(&Control<QComboBox>(window, "ddTileHeight"), Qt::Key_Home);
        Click(window, "btnOK");
    });
    EXPECT_TRUE(form_.OK());
    EXPECT_FALSE(form_.isVisible());
    EXPECT_EQ(form_.Name(), QStringLiteral("My map"));
    EXPECT_EQ(form_.Description(), QStringLiteral("All of it"));
    EXPECT_EQ(form_.TileWidth(), 512);
    EXPECT_EQ(form_.TileHeight(), 64);
}

TEST_F(NewMap, CutsNoTextThatIsPasted) {
    const QString megabyte(1 << 20, u'm');
    Run([&megabyte](QWidget& window) {
        Control<QLineEdit>(window, "tbName").setText(megabyte);
        Control<QLineEdit>(window, "tbDescription").setText(megabyte);
        Click(window, "btnOK");
    });
    EXPECT_TRUE(form_.Name() == megabyte);
    EXPECT_TRUE(form_.Description() == megabyte);
}

TEST_F(NewMap, EnterIsOK) {
    Run([](QWidget& window) { QTest::keyClick(&Control<QLineEdit>(window, "tbName"), Qt::Key_Return); });
    EXPECT_TRUE(form_.OK());
}

TEST_F(NewMap, IsNotOKAfterCancelEscapeOrTheCloseButton) {
    const std::vector<std::function<void(QWidget&)>> ways{
        [](QWidget& window) { Click(window, "btnCancel"); },
        [](QWidget& window) { QTest::keyClick(&window, Qt::Key_Escape); },
        [](QWidget& window) { window.close(); }};
    for (const auto& way : ways) {
        // Each showing starts anew, whatever the one before brought.
        Run([](QWidget& window) { Click(window, "btnOK"); });
        EXPECT_TRUE(form_.OK());
        Run([&](QWidget& window) {
            EXPECT_FALSE(form_.OK());
            way(window);
        });
        EXPECT_FALSE(form_.OK());
        EXPECT_FALSE(form_.isVisible());
    }
}

TEST_F(NewMap, ReducedToAnIconAsksForNoTileSize) {
    form_.SetName(QStringLiteral("pin"));
    form_.ReduceToIcon();
    EXPECT_EQ(form_.windowTitle(), QStringLiteral("New icon settings..."));
    Run([](QWidget& window) {
        for (const char* const name : {"ddTileWidth", "ddTileHeight"}) {
            const auto& list = Control<QComboBox>(window, name);
            EXPECT_EQ(Entries(list), QStringList{"n/a"});
            EXPECT_EQ(list.currentIndex(), 0);
            EXPECT_FALSE(list.isEnabled());
        }
        EXPECT_TRUE(Control<QLabel>(window, "lbWarning").isHidden());
        Click(window, "btnOK");
    });
    EXPECT_TRUE(form_.OK());
    EXPECT_EQ(form_.Name(), QStringLiteral("pin"));
}
