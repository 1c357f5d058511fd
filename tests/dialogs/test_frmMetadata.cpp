#include "dialogs/frmMetadata.h"

#include "tests/component/LibraryFixture.h"
#include "tests/support/desktop/Controls.h"
#include "tests/support/desktop/ModalScript.h"

namespace {

using Pairs = std::vector<std::pair<std::string, std::string>>;

const auto NamePrompt = QStringLiteral("Input name of new metadata");

constexpr std::array FixedFields{"tbMetaName", "tbAuthor",      "tbVersion",
                                 "tbCreated",  "tbLastChanged", "tbDescription"};

QTreeWidget& List(const QWidget& window) {
    return Control<QTreeWidget>(window, "lvCustomMeta");
}

void ShowCustomMetadata(QWidget& window) {
    Control<QTabWidget>(window, "SSTab1").setCurrentIndex(1);
}

/// Clicks the entry at this position, counted from 0.
void Select(const QWidget& window, int position) {
    QTreeWidget& list = List(window);
    list.scrollToItem(list.topLevelItem(position));
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {},
                      list.visualItemRect(list.topLevelItem(position)).center());
}

/// What the list shows: "key=value" for each entry.
QStringList Shown(const QWidget& window) {
    QStringList entries;
    for (int position = 0; position < List(window).topLevelItemCount(); ++position) {
        const QTreeWidgetItem& item = *List(window).topLevelItem(position);
        entries.append(item.text(0) + QLatin1Char('=') + item.text(1));
    }
    return entries;
}

class MetadataDialog : public LibraryTest {
protected:
    MetadataDialog()
        : library_(NewLibrary()), map_(AddMap(*library_, MakeSheet(PixelFormat::Grey, 9, 9), "own name")),
          icon_(AddIcon(*library_, MakeSheet(PixelFormat::Grey, 9, 9), "own icon name")) {}

    /// Shows the map's metadata; `act` has to end it.
    void Run(const std::function<void(QWidget&)>& act) {
        script_.Expect(QStringLiteral("frmMetadata"), act);
        form_.ShowMapMetaData(map_);
        EXPECT_FALSE(form_.isVisible());
    }

    /// Presses "+" and gives the name.
    void Add(const QWidget& window, const char* name) {
        script_.ExpectInput(NamePrompt, QString::fromLatin1(name));
        Click(window, "btnAdd");
    }

    Pairs Written() const { return MetadataOf(*map_); }
    /// What was written beside the six fixed texts.
    Pairs Custom() const {
        Pairs pairs = Written();
        std::erase_if(pairs, [](const auto& pair) {
            const std::vector<std::string> fixed{"name",        "author",  "version",
                                                 "lastchanged", "created", "description"};
            return std::find(fixed.begin(), fixed.end(), pair.first) != fixed.end();
        });
        return pairs;
    }

    ModalScript script_;
    std::unique_ptr<AtlavexLibrary> library_;
    std::shared_ptr<AtlavexMap> map_;
    std::shared_ptr<AtlavexIcon> icon_;
    frmMetadata form_;
};

void ClickOK(QWidget& window) {
    Click(window, "btnOK");
}

void ClickCancel(QWidget& window) {
    Click(window, "btnCancel");
}

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

TEST_F(MetadataDialog, SelectingAnEntryShowsItsData) {
    map_->SetMetadata("first", "1");
    map_->SetMetadata("second", "2");
    Run([](QWidget& window) {
        ShowCustomMetadata(window);
        auto& data = Control<QLineEdit>(window, "tbData");
        Select(window, 1);
        EXPECT_EQ(data.text(), QStringLiteral("2"));
        EXPECT_TRUE(data.isEnabled());
        QTest::keyClick(&List(window), Qt::Key_Up);
        EXPECT_EQ(data.text(), QStringLiteral("1"));
        EXPECT_FALSE(Control<QPushButton>(window, "btnOK").isEnabled()) << "looking is no change";
        ClickCancel(window);
    });
}

TEST_F(MetadataDialog, FocusAloneSelectsNothing) {
    map_->SetMetadata("first", "1");
    Run([](QWidget& window) {
        ShowCustomMetadata(window);
        List(window).setFocus(Qt::TabFocusReason);
        EXPECT_FALSE(Control<QLineEdit>(window, "tbData").isEnabled());
        Click(window, "btnRemove");
        EXPECT_EQ(Shown(window), QStringList{"first=1"}) << "no entry is selected";
        ClickCancel(window);
    });
}

TEST_F(MetadataDialog, EditedDataOfTheObjectsEntriesIsWritten) {
    map_->SetMetadata("first", "1");
    map_->SetMetadata("second", "2");
    Run([](QWidget& window) {
        ShowCustomMetadata(window);
        Select(window, 0);
        TypeInto(window, "tbData", QStringLiteral("new"));
        EXPECT_EQ(Shown(window), (QStringList{"first=new", "second=2"}));
        ClickOK(window);
    });
    EXPECT_EQ(Custom(), (Pairs{{"first", "new"}, {"second", "2"}}));
}

TEST_F(MetadataDialog, AddsAnEntryAndItsData) {
    map_->SetMetadata("first", "1");
    Run([this](QWidget& window) {
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        ShowCustomMetadata(window);
        Add(window, "new one");
        EXPECT_EQ(Shown(window), (QStringList{"first=1", "new one="}));
        EXPECT_TRUE(List(window).topLevelItem(1)->isSelected());
        EXPECT_TRUE(Control<QPushButton>(window, "btnRemove").isEnabled());
        EXPECT_TRUE(Control<QPushButton>(window, "btnOK").isEnabled());
        EXPECT_EQ(window.focusWidget(), &Control<QLineEdit>(window, "tbData"));
        QTest::keyClicks(window.focusWidget(), QStringLiteral("value"));
        EXPECT_EQ(Shown(window), (QStringList{"first=1", "new one=value"}));
        ClickOK(window);
    });
    EXPECT_EQ(Custom(), (Pairs{{"first", "1"}, {"new one", "value"}}));
}

TEST_F(MetadataDialog, AddsNothingForAnEmptyNameOrNone) {
    Run([this](QWidget& window) {
        ShowCustomMetadata(window);
        script_.ExpectInput(NamePrompt, QString()).ExpectInput(NamePrompt, std::nullopt);
        Click(window, "btnAdd");
        Click(window, "btnAdd");
        EXPECT_EQ(Shown(window), QStringList{});
        EXPECT_FALSE(Control<QPushButton>(window, "btnOK").isEnabled());
        EXPECT_FALSE(Control<QPushButton>(window, "btnRemove").isEnabled());
        ClickCancel(window);
    });
}

TEST_F(MetadataDialog, TakesAnyKeyOneOfTheFixedIncluded) {
    map_->SetMetadata("first", "1");
    Run([this](QWidget& window) {
        ShowCustomMetadata(window);
        for (const char* const key : {"_x", "author", "first"}) {
            Add(window, key);
            QTest::keyClicks(window.focusWidget(), QStringLiteral("by the list"));
        }
        EXPECT_EQ(List(window).topLevelItemCount(), 4);
        ClickOK(window);
    });
    EXPECT_EQ(map_->GetMetadata("author"), "by the list") << "the list is written after the fixed texts";
    EXPECT_EQ(Custom(), (Pairs{{"first", "by the list"}, {"_x", "by the list"}}));
}

TEST_F(MetadataDialog, RemovesAnEntryOfTheObjectOnOK) {
    map_->SetMetadata("first", "1");
    map_->SetMetadata("second", "2");
    Run([this](QWidget& window) {
        ShowCustomMetadata(window);
        Select(window, 0);
        Click(window, "btnRemove");
        EXPECT_EQ(Shown(window), QStringList{"second=2"});
        EXPECT_EQ(Control<QLineEdit>(window, "tbData").text(), QString());
        EXPECT_FALSE(Control<QLineEdit>(window, "tbData").isEnabled());
        EXPECT_TRUE(List(window).selectedItems().isEmpty());
        EXPECT_TRUE(Control<QPushButton>(window, "btnRemove").isEnabled());
        EXPECT_EQ(map_->GetMetadata("first"), "1") << "not before OK";
        Select(window, 0);
        Click(window, "btnRemove");
        EXPECT_FALSE(Control<QPushButton>(window, "btnRemove").isEnabled());
        ClickOK(window);
    });
    EXPECT_EQ(Custom(), Pairs{});
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

TEST_F(MetadataDialog, AnEntryAddedAndRemovedAgainIsNotWritten) {
    Run([this](QWidget& window) {
        ShowCustomMetadata(window);
        Add(window, "one");
        Add(window, "two");
        Select(window, 1);
        Click(window, "btnRemove");
        EXPECT_EQ(Shown(window), QStringList{"one="});
        ClickOK(window);
    });
    EXPECT_EQ(Custom(), (Pairs{{"one", ""}}));
}

TEST_F(MetadataDialog, RemovingANewEntryBeyondTheAddedOnesForgetsItself) {
    map_->SetMetadata("first", "1");
    map_->SetMetadata("second", "2");
    Run([this](QWidget& window) {
        ShowCustomMetadata(window);
        Add(window, "new");
        Select(window, 2);
        Click(window, "btnRemove");
        ClickOK(window);
    });
    EXPECT_EQ(Custom(), (Pairs{{"first", "1"}, {"second", "2"}}));
}

TEST_F(MetadataDialog, RemovingANewEntryForgetsTheOneAddedAtItsListPosition) {
    map_->SetMetadata("first", "1");
    Run([this](QWidget& window) {
        ShowCustomMetadata(window);
        Add(window, "A");
        QTest::keyClicks(window.focusWidget(), QStringLiteral("of A"));
        Add(window, "B");
        QTest::keyClicks(window.focusWidget(), QStringLiteral("of B"));
        // "A" is the second of the list; the second that was added is "B".
        Select(window, 1);
        Click(window, "btnRemove");
        EXPECT_EQ(Shown(window), (QStringList{"first=1", "B=of B"}));
        ClickOK(window);
    });
    EXPECT_EQ(Custom(), (Pairs{{"first", "1"}, {"A", "of A"}}));
}

TEST_F(MetadataDialog, AKeyRemovedAndAddedAgainStays) {
    map_->SetMetadata("first", "1");
    Run([this](QWidget& window) {
        ShowCustomMetadata(window);
        Select(window, 0);
        Click(window, "btnRemove");
        Add(window, "first");
        QTest::keyClicks(window.focusWidget(), QStringLiteral("anew"));
        ClickOK(window);
    });
    EXPECT_EQ(Custom(), (Pairs{{"first", "anew"}}));
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

TEST_F(MetadataDialog, EnterInTheDataFieldIsOKAndNotPlus) {
    map_->SetMetadata("first", "1");
    Run([](QWidget& window) {
        ShowCustomMetadata(window);
        Select(window, 0);
        TypeInto(window, "tbData", QStringLiteral("x"));
        QTest::keyClick(&Control<QLineEdit>(window, "tbData"), Qt::Key_Return);
    });
    EXPECT_EQ(Custom(), (Pairs{{"first", "x"}}));
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

TEST_F(MetadataDialog, TakesAThousandEntriesAndBringsThemBackInOrder) {
    Pairs expected;
    for (int i = 0; i < 1000; ++i) {
        expected.emplace_back("key " + std::to_string(i), "value\nof " + std::to_string(i));
        map_->SetMetadata(expected.back().first, expected.back().second);
    }
    Run([](QWidget& window) {
        ShowCustomMetadata(window);
        EXPECT_EQ(List(window).topLevelItemCount(), 1000);
        Select(window, 999);
        EXPECT_EQ(Control<QLineEdit>(window, "tbData").text(), QStringLiteral("value\nof 999"));
        TypeInto(window, "tbData", QStringLiteral("last"));
        ClickOK(window);
    });
    expected.back().second = "last";
    EXPECT_EQ(Custom(), expected);
}

TEST_F(MetadataDialog, TakesAValueOfAMegabyte) {
    const std::string huge(1 << 20, 'm');
    map_->SetMetadata("huge", huge);
    Run([](QWidget& window) {
        ShowCustomMetadata(window);
        Select(window, 0);
        auto& data = Control<QLineEdit>(window, "tbData");
        EXPECT_EQ(data.text().size(), 1 << 20);
        QTest::keyClick(&data, Qt::Key_End);
        QTest::keyClicks(&data, QStringLiteral("!"));
        ClickOK(window);
    });
    EXPECT_EQ(map_->GetMetadata("huge"), huge + "!");
}

TEST_F(MetadataDialog, SaysWhyTheTextsCannotBeWrittenAndStays) {
    map_->SetMetadata("huge", std::string((16 << 20) - 100, 'm'));
    Run([this](QWidget& window) {
        script_.ExpectBox(QStringLiteral("The metadata of one map or icon may hold 16 megabytes at most."));
        TypeInto(window, "tbAuthor", QString(200, u'a'));
        ClickOK(window);
        EXPECT_TRUE(window.isVisible());
        ClickCancel(window);
    });
    EXPECT_FALSE(form_.OK());
}

TEST_F(MetadataDialog, CountsEntriesIn16Bits) {
    for (int i = 0; i < 32767; ++i)
        map_->SetMetadata(std::to_string(i), "");
    Run([](QWidget& window) {
        EXPECT_EQ(List(window).topLevelItemCount(), 32767);
        ClickCancel(window);
    });
    map_->SetMetadata("one more", "");
    EXPECT_ERROR(form_.ShowMapMetaData(map_), ErrorNumber::Overflow);
}
