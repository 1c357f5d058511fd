#include "tests/app/EditingFixture.h"
#include "tests/support/desktop/ExpectedTexts.h"

namespace {

/// Renames in the metadata dialog that is open.
void Rename(QWidget& window, const QString& name) {
    auto& field = Control<QLineEdit>(window, "tbMetaName");
    EXPECT_EQ(field.selectedText(), field.text()) << "the whole name is selected";
    EXPECT_FALSE(Control<QLineEdit>(window, "tbAuthor").isEnabled());
    EXPECT_FALSE(Control<QTabWidget>(window, "SSTab1").isTabEnabled(1));
    QTest::keyClicks(&field, name);
    Click(window, "btnOK");
}

class EditingCommands : public EditingTest {
protected:
    void ExpectMetadata(std::function<void(QWidget&)> act) {
        Expecting().Expect(QStringLiteral("frmMetadata"), std::move(act));
    }
    void StartWith(const std::vector<QSize>& maps, int icons) {
        Start(QString::fromStdString(MakeLibrary("a.Atlavex", maps, icons)));
    }
    void DeleteMap(const char* name) {
        Expecting().ExpectBox(QStringLiteral("Are you sure you want to delete '") + QString::fromUtf8(name) +
                                  QStringLiteral("' map?"),
                              QMessageBox::Yes);
        Choose("mBitmapDelete");
    }
    void DeleteIcon(const char* name) {
        Expecting().ExpectBox(QStringLiteral("Are you sure you want to delete '") + QString::fromUtf8(name) +
                                  QStringLiteral("' Icon?"),
                              QMessageBox::Yes);
        Choose("mIconsDeleteIcon");
    }
    void ExpectOffset(std::function<void(QWidget&)> act) {
        Expecting().Expect(QStringLiteral("frmOffset"), std::move(act));
    }
};

} // namespace

TEST_F(EditingCommands, RenamingAMapShowsTheNewNameAtTheSameEntry) {
    StartWith({{20, 20}, {30, 30}}, 1);
    Pick("ddMaps", 1);
    ExpectMetadata([](QWidget& window) { Rename(window, QStringLiteral("New <i>name</i>")); });
    Choose("mBitmapRename");
    EXPECT_EQ(EntriesOf("ddMaps"), (QStringList{"map1", "New <i>name</i>"}));
    EXPECT_EQ(EntryOf("ddMaps"), 1);
    EXPECT_EQ(State().currentMap->Width(), 30);
    EXPECT_TRUE(State().modified);
    EXPECT_TRUE(State().mapScaled);
    EXPECT_FALSE(IsEnabled("mnuTileExport"));
}

TEST_F(EditingCommands, RenamingAMapToItsOwnNameOrNotAtAllIsNoChange) {
    StartWith({{20, 20}}, 0);
    ExpectMetadata([](QWidget& window) { Rename(window, QStringLiteral("map1")); });
    Choose("mBitmapRename");
    ExpectMetadata([](QWidget& window) {
        QTest::keyClicks(&Control<QLineEdit>(window, "tbMetaName"), QStringLiteral("other"));
        QTest::keyClick(&window, Qt::Key_Escape);
    });
    Choose("mBitmapRename");
    EXPECT_EQ(EntriesOf("ddMaps"), QStringList{"map1"});
    EXPECT_FALSE(State().modified);
}

TEST_F(EditingCommands, RenamingAnIconKeepsItsOtherTexts) {
    StartWith({{20, 20}}, 2);
    Pick("ddIcons", 1);
    State().currentIcon->SetMetadata("author", "A");
    ExpectMetadata([](QWidget& window) {
        EXPECT_EQ(Control<QLineEdit>(window, "tbMetaName").text(), QStringLiteral("icon2"));
        Rename(window, QStringLiteral("pin"));
    });
    Choose("mIconsRenameIcons");
    EXPECT_EQ(EntriesOf("ddIcons"), (QStringList{"icon1", "pin"}));
    EXPECT_EQ(EntryOf("ddIcons"), 1);
    EXPECT_EQ(State().currentIcon->GetMetadata("author"), "A");
    EXPECT_TRUE(State().modified);
    EXPECT_EQ(TextOf("lbSize"), "Bitmap size: (20, 20)") << "the maps' page is shown";
}

TEST_F(EditingCommands, AnIconWithoutANameOfItsOwnIsRenamedFromTheOneItCameWith) {
    StartWith({{20, 20}}, 1);
    State().currentIcon->SetMetadata("name", "");
    ExpectMetadata([](QWidget& window) {
        EXPECT_EQ(Control<QLineEdit>(window, "tbMetaName").text(), QStringLiteral("icon1"));
        Rename(window, QStringLiteral("icon1"));
    });
    Choose("mIconsRenameIcons");
    EXPECT_EQ(State().currentIcon->GetMetadata("name"), "icon1");
    EXPECT_FALSE(State().modified) << "the name shown is the same";
}

TEST_F(EditingCommands, RenamingAnIconToItsOwnNameIsNoChange) {
    StartWith({{20, 20}}, 1);
    ExpectMetadata([](QWidget& window) { Rename(window, QStringLiteral("icon1")); });
    Choose("mIconsRenameIcons");
    EXPECT_FALSE(State().modified);
}

TEST_F(EditingCommands, DeletingAsksFirstAndNoIsTheDefault) {
    StartWith({{20, 20}}, 1);
    Expecting().Expect(QStringLiteral("MessageBox"), [](QWidget& window) {
        auto& box = dynamic_cast<QMessageBox&>(window);
        Activate(box);
        EXPECT_EQ(box.text(), DeleteMap1);
        EXPECT_EQ(box.defaultButton(), box.button(QMessageBox::No));
        QTest::keyClick(&box, Qt::Key_Return);
    });
    Choose("mBitmapDelete");
    Expecting().Expect(QStringLiteral("MessageBox"), [](QWidget& window) {
        auto& box = dynamic_cast<QMessageBox&>(window);
        Activate(box);
        EXPECT_EQ(box.text(), DeleteIcon1);
        EXPECT_EQ(box.defaultButton(), box.button(QMessageBox::No));
        QTest::keyClick(&box, Qt::Key_Escape);
    });
    Choose("mIconsDeleteIcon");
    EXPECT_EQ(State().objAtlavex->MapCount(), 1);
    EXPECT_EQ(State().objAtlavex->IconCount(), 1);
    EXPECT_FALSE(State().modified);
}

TEST_F(EditingCommands, DeletingAMapMakesTheFirstCurrent) {
    StartWith({{20, 20}, {30, 30}, {40, 40}}, 1);
    Pick("ddMaps", 1);
    DeleteMap("map2");
    EXPECT_EQ(EntriesOf("ddMaps"), (QStringList{"map1", "map3"}));
    EXPECT_EQ(EntryOf("ddMaps"), 0);
    EXPECT_EQ(State().currentMap->Width(), 20);
    EXPECT_EQ(State().rememberedMap, 0);
    EXPECT_EQ(TextOf("lStatus"), ScaledStatus);
    EXPECT_EQ(TextOf("lbSize"), "");
    EXPECT_TRUE(State().modified);
    EXPECT_FALSE(IsEnabled("mnuTileExport"));
    EXPECT_TRUE(IsEnabled("mBitmapDelete"));
}

TEST_F(EditingCommands, DeletingAnUnscaledMapLeavesTheFlagToTheCount) {
    StartWith({{20, 20}}, 1);
    AddMapByMenu(ImageNamed("new.png"));
    EXPECT_FALSE(State().mapScaled);
    DeleteMap("new");
    EXPECT_TRUE(State().mapScaled);
    EXPECT_EQ(TextOf("lStatus"), ScaledStatus);
}

TEST_F(EditingCommands, DeletingTheLastMapLeavesNothingShownAndNothingModified) {
    StartWith({{20, 20}}, 1);
    Expecting().Expect(QStringLiteral("frmMetadata"),
                       [](QWidget& window) { Rename(window, QStringLiteral("m")); });
    Choose("mBitmapRename");
    EXPECT_TRUE(State().modified);
    DeleteMap("m");
    EXPECT_EQ(EntriesOf("ddMaps"), QStringList{});
    EXPECT_EQ(EntryOf("ddMaps"), -1);
    EXPECT_EQ(State().currentMap, nullptr);
    EXPECT_EQ(State().rememberedMap, -1);
    EXPECT_EQ(TextOf("lStatus"), NotScaledStatus);
    EXPECT_EQ(TextOf("lbSize"), "");
    EXPECT_FALSE(Find<QSlider>("sldZoom").isEnabled());
    EXPECT_FALSE(State().modified) << "a deletion that leaves no maps or no icons clears the flag";
    EXPECT_FALSE(IsEnabled("mBitmapDelete"));
    EXPECT_TRUE(IsEnabled("mnuTileExport"));
    AddMapByMenu(ImageNamed("again.png"));
    EXPECT_TRUE(Find<QSlider>("sldZoom").isEnabled());
}

TEST_F(EditingCommands, DeletingInALibraryOfMapsOnlyLeavesItUnmodified) {
    StartWith({{20, 20}, {30, 30}}, 0);
    DeleteMap("map1");
    EXPECT_FALSE(State().modified);
}

TEST_F(EditingCommands, DeletingAnIconMakesTheFirstCurrentAndLeavesTheMap) {
    StartWith({{20, 20}}, 3);
    Pick("ddIcons", 2);
    const auto map = State().currentMap;
    DeleteIcon("icon3");
    EXPECT_EQ(EntriesOf("ddIcons"), (QStringList{"icon1", "icon2"}));
    EXPECT_EQ(EntryOf("ddIcons"), 0);
    EXPECT_EQ(State().currentIcon->Name(), "icon1");
    EXPECT_EQ(State().currentMap, map);
    EXPECT_TRUE(State().mapScaled);
    EXPECT_TRUE(State().modified);
    EXPECT_EQ(TextOf("lbSize"), "Bitmap size: (20, 20)");
}

TEST_F(EditingCommands, DeletingTheLastIconClearsTheFlag) {
    StartWith({{20, 20}}, 1);
    DeleteIcon("icon1");
    EXPECT_EQ(State().currentIcon, nullptr);
    EXPECT_EQ(EntriesOf("ddIcons"), QStringList{});
    EXPECT_FALSE(State().modified);
    EXPECT_FALSE(IsEnabled("mIconsDeleteIcon"));
    EXPECT_FALSE(IsEnabled("mnuIconMetaData"));
}

TEST_F(EditingCommands, AnOffsetIsWrittenWhenItDiffers) {
    StartWith({{20, 20}}, 1);
    ExpectOffset([](QWidget& window) { Click(window, "bOK"); });
    Choose("mIconsOffset");
    EXPECT_FALSE(State().modified);
    ExpectOffset([](QWidget& window) {
        TypeInto(window, "txtX", QStringLiteral("5"));
        QTest::keyClick(&window, Qt::Key_Escape);
    });
    Choose("mIconsOffset");
    EXPECT_EQ(State().currentIcon->OffsetX(), 0);
    EXPECT_FALSE(State().modified);
    ExpectOffset([](QWidget& window) {
        TypeInto(window, "txtY", QStringLiteral("-7"));
        Click(window, "bOK");
    });
    Choose("mIconsOffset");
    EXPECT_EQ(State().currentIcon->OffsetX(), 0);
    EXPECT_EQ(State().currentIcon->OffsetY(), -7);
    EXPECT_TRUE(State().modified);
    ExpectOffset([](QWidget& window) {
        EXPECT_EQ(Control<QLineEdit>(window, "txtY").text(), QStringLiteral("-7"));
        Click(window, "bCancel");
    });
    Choose("mIconsOffset");
}

TEST_F(EditingCommands, AnOffsetNeedsAnIcon) {
    Start();
    // The entry is disabled without one: only who calls the handler itself sees the sentence.
    Find<QAction>("mIconsOffset").setEnabled(true);
    Expecting().ExpectBox(QStringLiteral("No icon selected"));
    Find<QAction>("mIconsOffset").trigger();
    EXPECT_FALSE(State().modified);
    EXPECT_FALSE(IsEnabled("mIconsOffset"));
}

TEST_F(EditingCommands, AnOffsetThatIsNoNumberChangesNeitherValue) {
    StartWith({{20, 20}}, 1);
    ExpectOffset([this](QWidget& window) {
        TypeInto(window, "txtX", QStringLiteral("5"));
        for (const char* const text : {"seven", "99999999999", "1e400"}) {
            Expecting().ExpectBox(QStringLiteral("'%1' is not a number!").arg(QLatin1String(text)));
            TypeInto(window, "txtY", QLatin1String(text));
            Click(window, "bOK");
        }
        QTest::keyClick(&window, Qt::Key_Escape);
    });
    Choose("mIconsOffset");
    EXPECT_EQ(State().currentIcon->OffsetX(), 0);
    EXPECT_EQ(State().currentIcon->OffsetY(), 0);
    EXPECT_FALSE(State().modified);
}

TEST_F(EditingCommands, MetadataOfAMapMarksTheLibraryOnOK) {
    StartWith({{20, 20}}, 1);
    ExpectMetadata([](QWidget& window) {
        EXPECT_TRUE(Control<QTabWidget>(window, "SSTab1").isTabEnabled(1));
        TypeInto(window, "tbAuthor", QStringLiteral("A"));
        Click(window, "btnCancel");
    });
    Choose("mnuMapMetaData");
    EXPECT_FALSE(State().modified);
    ExpectMetadata([](QWidget& window) {
        TypeInto(window, "tbMetaName", QStringLiteral("North"));
        Click(window, "btnOK");
    });
    Choose("mnuMapMetaData");
    EXPECT_TRUE(State().modified);
    EXPECT_EQ(EntriesOf("ddMaps"), QStringList{"North"});
    EXPECT_FALSE(IsEnabled("mnuTileExport"));
}

TEST_F(EditingCommands, MetadataOfAnIconMarksTheLibraryOnOK) {
    StartWith({{20, 20}}, 2);
    Pick("ddIcons", 1);
    ExpectMetadata([](QWidget& window) {
        TypeInto(window, "tbMetaName", QStringLiteral("pin"));
        Click(window, "btnOK");
    });
    Choose("mnuIconMetaData");
    EXPECT_TRUE(State().modified);
    EXPECT_EQ(EntriesOf("ddIcons"), (QStringList{"icon1", "pin"}));
    EXPECT_EQ(EntryOf("ddIcons"), 1);
}
