#include "tests/dialogs/MetadataFixture.h"

TEST_F(CustomMetadata, SelectingAnEntryShowsItsData) {
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

TEST_F(CustomMetadata, FocusAloneSelectsNothing) {
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

TEST_F(CustomMetadata, EditedDataOfTheObjectsEntriesIsWritten) {
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

TEST_F(CustomMetadata, AddsAnEntryAndItsData) {
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

TEST_F(CustomMetadata, AddsNothingForAnEmptyNameOrNone) {
    Run([this](QWidget& window) {
        ShowCustomMetadata(window);
        script_.ExpectInput(NewMetadataName, QString()).ExpectInput(NewMetadataName, std::nullopt);
        Click(window, "btnAdd");
        Click(window, "btnAdd");
        EXPECT_EQ(Shown(window), QStringList{});
        EXPECT_FALSE(Control<QPushButton>(window, "btnOK").isEnabled());
        EXPECT_FALSE(Control<QPushButton>(window, "btnRemove").isEnabled());
        ClickCancel(window);
    });
}

TEST_F(CustomMetadata, TakesAnyKeyOneOfTheFixedIncluded) {
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

TEST_F(CustomMetadata, RemovesAnEntryOfTheObjectOnOK) {
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

TEST_F(CustomMetadata, AnEntryAddedAndRemovedAgainIsNotWritten) {
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

TEST_F(CustomMetadata, RemovingANewEntryBeyondTheAddedOnesForgetsItself) {
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

TEST_F(CustomMetadata, RemovingANewEntryForgetsTheOneAddedAtItsListPosition) {
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

TEST_F(CustomMetadata, AKeyRemovedAndAddedAgainStays) {
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

TEST_F(CustomMetadata, EnterInTheDataFieldIsOKAndNotPlus) {
    map_->SetMetadata("first", "1");
    Run([](QWidget& window) {
        ShowCustomMetadata(window);
        Select(window, 0);
        TypeInto(window, "tbData", QStringLiteral("x"));
        QTest::keyClick(&Control<QLineEdit>(window, "tbData"), Qt::Key_Return);
    });
    EXPECT_EQ(Custom(), (Pairs{{"first", "x"}}));
}

TEST_F(CustomMetadata, TakesAThousandEntriesAndBringsThemBackInOrder) {
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

TEST_F(CustomMetadata, TakesAValueOfAMegabyte) {
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

TEST_F(CustomMetadata, CountsEntriesIn16Bits) {
    for (int i = 0; i < 32767; ++i)
        map_->SetMetadata(std::to_string(i), "");
    Run([](QWidget& window) {
        EXPECT_EQ(List(window).topLevelItemCount(), 32767);
        ClickCancel(window);
    });
    map_->SetMetadata("one more", "");
    EXPECT_ERROR(form_.ShowMapMetaData(map_), ErrorNumber::Overflow);
}

TEST_F(CustomMetadata, DataThatReadsAgainAsBeforeKeepsItsBytes) {
    map_->SetMetadata("first", "caf\xe9");
    Run([](QWidget& window) {
        ShowCustomMetadata(window);
        Select(window, 0);
        auto& data = Control<QLineEdit>(window, "tbData");
        QTest::keyClick(&data, Qt::Key_End);
        QTest::keyClicks(&data, QStringLiteral("x"));
        QTest::keyClick(&data, Qt::Key_Backspace);
        ClickOK(window);
    });
    EXPECT_EQ(Custom(), (Pairs{{"first", "caf\xe9"}}));
}
