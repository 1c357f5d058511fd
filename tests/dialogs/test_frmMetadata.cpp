#include "tests/dialogs/MetadataFixture.h"

namespace {

constexpr std::array FixedFields{"tbMetaName", "tbAuthor",      "tbVersion",
                                 "tbCreated",  "tbLastChanged", "tbDescription"};

} // namespace

TEST_F(MetadataDialog, HasItsControls) {
    EXPECT_EQ(form_.windowTitle(), QStringLiteral("Metadata"));
    const auto& tabs = Control<QTabWidget>(form_, "SSTab1");
    ASSERT_EQ(tabs.count(), 2);
    EXPECT_EQ(tabs.tabText(0), QStringLiteral("Properties"));
    EXPECT_EQ(tabs.tabText(1), QStringLiteral("Custom metadata"));
    EXPECT_EQ(Control<QLabel>(form_, "lbMetaName").text(), QStringLiteral("Name:"));
    EXPECT_EQ(Control<QLabel>(form_, "lbAuthor").text(), QStringLiteral("Author:"));
    EXPECT_EQ(Control<QLabel>(form_, "lbVersion").text(), QStringLiteral("Version:"));
    EXPECT_EQ(Control<QLabel>(form_, "lbDescription").text(), QStringLiteral("Description:"));
    EXPECT_EQ(Control<QLabel>(form_, "lbCreated").text(), QStringLiteral("Created:"));
    EXPECT_EQ(Control<QLabel>(form_, "lbLastChanged").text(), QStringLiteral("Last changed:"));
    EXPECT_EQ(Control<QLabel>(form_, "Label3").text(), QStringLiteral("Data:"));
    EXPECT_EQ(Control<QPushButton>(form_, "btnAdd").text(), QStringLiteral("+"));
    EXPECT_EQ(Control<QPushButton>(form_, "btnRemove").text(), QStringLiteral("-"));
    EXPECT_EQ(Control<QPushButton>(form_, "btnOK").text(), QStringLiteral("OK"));
    EXPECT_EQ(Control<QPushButton>(form_, "btnCancel").text(), QStringLiteral("Cancel"));
    EXPECT_EQ(List(form_).headerItem()->text(0), QStringLiteral("Name"));
    EXPECT_EQ(List(form_).headerItem()->text(1), QStringLiteral("Data"));
}

TEST_F(MetadataDialog, ShowsTheFixedTextsAndTheOthersInTheirOrder) {
    for (const char* key : {"name", "zeta", "Author", "author", "NAME", "version", "lastchanged", "created",
                            "description", "_x", ""})
        map_->SetMetadata(key, std::string("of ") + key);
    Run([](QWidget& window) {
        EXPECT_EQ(Control<QLineEdit>(window, "tbMetaName").text(), QStringLiteral("of name"));
        EXPECT_EQ(Control<QLineEdit>(window, "tbAuthor").text(), QStringLiteral("of author"));
        EXPECT_EQ(Control<QLineEdit>(window, "tbVersion").text(), QStringLiteral("of version"));
        EXPECT_EQ(Control<QLineEdit>(window, "tbLastChanged").text(), QStringLiteral("of lastchanged"));
        EXPECT_EQ(Control<QLineEdit>(window, "tbCreated").text(), QStringLiteral("of created"));
        EXPECT_EQ(Control<QLineEdit>(window, "tbDescription").text(), QStringLiteral("of description"));
        EXPECT_EQ(Shown(window),
                  (QStringList{"zeta=of zeta", "Author=of Author", "NAME=of NAME", "_x=of _x", "=of "}));
        EXPECT_FALSE(Control<QPushButton>(window, "btnOK").isEnabled());
        EXPECT_TRUE(Control<QPushButton>(window, "btnRemove").isEnabled());
        EXPECT_FALSE(Control<QLineEdit>(window, "tbData").isEnabled());
        ClickCancel(window);
    });
    EXPECT_FALSE(form_.OK());
}

TEST_F(MetadataDialog, ShowsTheOwnNameWhereNoneWasGiven) {
    Run([](QWidget& window) {
        EXPECT_EQ(Control<QLineEdit>(window, "tbMetaName").text(), QStringLiteral("own name"));
        EXPECT_FALSE(Control<QPushButton>(window, "btnRemove").isEnabled());
        ClickCancel(window);
    });
    EXPECT_EQ(Written(), Pairs{});
}

TEST_F(MetadataDialog, AnyEditOfAFixedTextEnablesOK) {
    for (const char* const field : FixedFields)
        Run([field](QWidget& window) {
            EXPECT_FALSE(Control<QPushButton>(window, "btnOK").isEnabled());
            QTest::keyClicks(&Control<QLineEdit>(window, field), QStringLiteral("x"));
            EXPECT_TRUE(Control<QPushButton>(window, "btnOK").isEnabled()) << field;
            ClickCancel(window);
        });
}

TEST_F(MetadataDialog, WritesTheSixTextsAsTypedInTheirOrder) {
    Run([](QWidget& window) {
        TypeInto(window, "tbMetaName", QStringLiteral("  North  "));
        TypeInto(window, "tbAuthor", QStringLiteral("A"));
        TypeInto(window, "tbVersion", QStringLiteral("V"));
        TypeInto(window, "tbDescription", QStringLiteral("D"));
        TypeInto(window, "tbCreated", QStringLiteral("C"));
        TypeInto(window, "tbLastChanged", QStringLiteral("L"));
        ClickOK(window);
    });
    EXPECT_TRUE(form_.OK());
    EXPECT_EQ(Written(), (Pairs{{"name", "  North  "},
                                {"author", "A"},
                                {"version", "V"},
                                {"lastchanged", "L"},
                                {"created", "C"},
                                {"description", "D"}}));
}

TEST_F(MetadataDialog, OKWithoutAChangeWritesWhatIsThere) {
    map_->SetMetadata("author", "line one\r\nline two\ttab \"quoted\" \u202e right to left \U0001F5FA");
    map_->SetMetadata("description", std::string(100000, 'd'));
    map_->SetMetadata("own", "kept\r\nas it is");
    Run([](QWidget& window) {
        auto& name = Control<QLineEdit>(window, "tbMetaName");
        QTest::keyClick(&name, Qt::Key_End);
        QTest::keyClicks(&name, QStringLiteral("x"));
        QTest::keyClick(&name, Qt::Key_Backspace);
        ClickOK(window);
    });
    EXPECT_EQ(Written(),
              (Pairs{{"author", "line one\r\nline two\ttab \"quoted\" \u202e right to left \U0001F5FA"},
                     {"description", std::string(100000, 'd')},
                     {"own", "kept\r\nas it is"},
                     {"name", "own name"},
                     {"version", ""},
                     {"lastchanged", ""},
                     {"created", ""}}));
}

TEST_F(MetadataDialog, WritesToTheIconWhenItShowsOne) {
    script_.Expect(QStringLiteral("frmMetadata"), [](QWidget& window) {
        EXPECT_EQ(Control<QLineEdit>(window, "tbMetaName").text(), QStringLiteral("own icon name"));
        TypeInto(window, "tbMetaName", QStringLiteral("pin"));
        ClickOK(window);
    });
    form_.ShowIconMetaData(icon_);
    EXPECT_EQ(icon_->Name(), "pin");
    EXPECT_EQ(Written(), Pairs{});
}

TEST_F(MetadataDialog, RefusesANameOfBlanks) {
    Run([this](QWidget& window) {
        for (const char* const name : {"   ", ""}) {
            script_.ExpectBox(QStringLiteral("No name written!"));
            TypeInto(window, "tbMetaName", QString::fromLatin1(name));
            ShowCustomMetadata(window);
            ClickOK(window);
            EXPECT_EQ(window.focusWidget(), &Control<QLineEdit>(window, "tbMetaName"));
        }
        EXPECT_TRUE(window.isVisible());
        ClickCancel(window);
    });
    EXPECT_EQ(Written(), Pairs{});
}

TEST_F(MetadataDialog, RefusesANameThatStartsWithAnUnderscore) {
    Run([this](QWidget& window) {
        for (const char* const name : {"_x", "  _x"}) {
            script_.ExpectBox(QStringLiteral("Name may not start with \"_\""));
            TypeInto(window, "tbMetaName", QString::fromLatin1(name));
            QTest::keyClick(&Control<QLineEdit>(window, "tbMetaName"), Qt::Key_Return);
            EXPECT_EQ(window.focusWidget(), &Control<QLineEdit>(window, "tbMetaName"));
        }
        Control<QLineEdit>(window, "tbMetaName").setText(QStringLiteral("\t_x"));
        ClickOK(window);
    });
    EXPECT_EQ(map_->Name(), "\t_x") << "blanks are spaces only";
}

TEST_F(MetadataDialog, CancelAndEscapeWriteNothing) {
    map_->SetMetadata("first", "1");
    const Pairs before = Written();
    const auto change = [this](QWidget& window) {
        TypeInto(window, "tbAuthor", QStringLiteral("x"));
        ShowCustomMetadata(window);
        Select(window, 0);
        TypeInto(window, "tbData", QStringLiteral("x"));
        Add(window, "new");
        Select(window, 0);
        Click(window, "btnRemove");
    };
    const std::vector<std::function<void(QWidget&)>> ways{
        ClickCancel, [](QWidget& window) { QTest::keyClick(&window, Qt::Key_Escape); },
        [](QWidget& window) { window.close(); }};
    for (const auto& way : ways) {
        Run([&](QWidget& window) {
            change(window);
            way(window);
        });
        EXPECT_FALSE(form_.OK());
        EXPECT_EQ(Written(), before);
    }
}

TEST_F(MetadataDialog, ReducedToTheNameChangesOnlyThat) {
    map_->SetMetadata("author", "A");
    form_.ReduceToName();
    Run([](QWidget& window) {
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        auto& tabs = Control<QTabWidget>(window, "SSTab1");
        EXPECT_EQ(tabs.currentIndex(), 0);
        EXPECT_TRUE(tabs.isTabEnabled(0));
        EXPECT_FALSE(tabs.isTabEnabled(1));
        auto& name = Control<QLineEdit>(window, "tbMetaName");
        EXPECT_EQ(QApplication::focusWidget(), &name);
        EXPECT_EQ(name.selectedText(), QStringLiteral("own name"));
        for (const char* const other :
             {"lbAuthor", "tbAuthor", "lbVersion", "tbVersion", "lbDescription", "tbDescription", "lbCreated",
              "tbCreated", "lbLastChanged", "tbLastChanged"})
            EXPECT_FALSE(Control<QWidget>(window, other).isEnabled()) << other;
        EXPECT_TRUE(Control<QLabel>(window, "lbMetaName").isEnabled());
        QTest::keyClicks(&name, QStringLiteral("renamed"));
        QTest::keyClick(&name, Qt::Key_Return);
    });
    EXPECT_TRUE(form_.OK());
    EXPECT_EQ(map_->Name(), "renamed");
    EXPECT_EQ(map_->GetMetadata("author"), "A");
}

TEST_F(MetadataDialog, IsReachedByKeysInOrder) {
    map_->SetMetadata("first", "1");
    Run([](QWidget& window) {
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        QTest::keyClicks(&Control<QLineEdit>(window, "tbMetaName"), QStringLiteral("x"));
        EXPECT_EQ(TabOrder(window),
                  (QStringList{"tbMetaName", "tbAuthor", "tbVersion", "tbDescription", "tbCreated",
                               "tbLastChanged", "btnOK", "btnCancel", "qt_tabwidget_tabbar"}));
        ShowCustomMetadata(window);
        Select(window, 0);
        List(window).setFocus();
        EXPECT_EQ(TabOrder(window), (QStringList{"lvCustomMeta", "tbData", "btnAdd", "btnRemove", "btnOK",
                                                 "btnCancel", "qt_tabwidget_tabbar"}));
        ClickCancel(window);
    });
}

TEST_F(MetadataDialog, SaysWhyTheTextsCannotBeWrittenAndStays) {
    map_->SetMetadata("first", "1");
    map_->SetMetadata("huge", std::string((16 << 20) - 100, 'm'));
    map_->SetMetadata("name", "North");
    const Pairs before = Written();
    Run([this](QWidget& window) {
        script_.ExpectBox(QStringLiteral("The metadata of one map or icon may hold 16 megabytes at most."));
        TypeInto(window, "tbMetaName", QStringLiteral("South"));
        TypeInto(window, "tbAuthor", QString(200, u'a'));
        ClickOK(window);
        EXPECT_TRUE(window.isVisible());
        ClickCancel(window);
    });
    EXPECT_FALSE(form_.OK());
    EXPECT_TRUE(Written() == before) << "and in the same order";
}

TEST_F(MetadataDialog, ATextThatNobodyTouchedKeepsItsBytes) {
    const std::string latin = "caf\xe9", broken = "\xff\xfe\x80 half \xc3";
    for (const char* const key : {"name", "author", "version", "lastchanged", "created", "description"})
        map_->SetMetadata(key, latin + key);
    map_->SetMetadata("own " + latin, broken);
    Run([](QWidget& window) {
        TypeInto(window, "tbAuthor", QStringLiteral("Smith"));
        ClickOK(window);
    });
    EXPECT_EQ(Written(), (Pairs{{"name", latin + "name"},
                                {"author", "Smith"},
                                {"version", latin + "version"},
                                {"lastchanged", latin + "lastchanged"},
                                {"created", latin + "created"},
                                {"description", latin + "description"},
                                {"own " + latin, broken}}));
}

TEST_F(MetadataDialog, RenamingKeepsTheBytesOfAllOtherTexts) {
    map_->SetMetadata("description", "caf\xe9");
    form_.ReduceToName();
    Run([](QWidget& window) {
        TypeInto(window, "tbMetaName", QStringLiteral("renamed"));
        ClickOK(window);
    });
    EXPECT_EQ(map_->GetMetadata("name"), "renamed");
    EXPECT_EQ(map_->GetMetadata("description"), "caf\xe9");
}

TEST_F(MetadataDialog, ANameThatWasNotTouchedKeepsItsBytesEvenWhereItIsTheObjectsOwn) {
    const auto map = AddMap(*library_, MakeSheet(PixelFormat::Grey, 9, 9), "caf\xe9");
    script_.Expect(QStringLiteral("frmMetadata"), [](QWidget& window) {
        TypeInto(window, "tbVersion", QStringLiteral("2"));
        ClickOK(window);
    });
    form_.ShowMapMetaData(map);
    EXPECT_EQ(map->GetMetadata("name"), "caf\xe9");
}
