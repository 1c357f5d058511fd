#include "component/Bitmap.h"
#include "tests/app/ShellFixture.h"
#include "tests/support/desktop/ExpectedTexts.h"

#include <QAbstractItemView>
#include <QScrollBar>
#include <QWheelEvent>

#include <set>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Choosing maps and icons in the lists, and the two pages.
class Selecting : public ShellTest {
protected:
    void StartWith(const std::string& file) {
        Start();
        OpenByMenu(file);
        TakeCalls();
    }
    /// Changes a byte in the middle of the icon's picture.
    void DamageIcon(const std::string& file, std::int32_t position) {
        const auto png = IconAt(*Open(file), position)->PngFile();
        std::string content = ReadWholeFile(file);
        const auto middle = content.find(std::string(png.end() - 60, png.end() - 20));
        ASSERT_NE(middle, std::string::npos);
        content[middle] = static_cast<char>(content[middle] ^ 1);
        WriteWholeFile(file, content);
    }
    /// The icon view shows the pattern of what is damaged and nothing else.
    bool ShowsHatching() {
        const auto image = Find<KarvelViewer>("viewerIcon").Image();
        if (image == nullptr || image->Pixels() == nullptr)
            return false;
        const auto& pixels = image->Pixels()->pixels;
        const std::set<std::uint32_t> colours(pixels.begin(), pixels.end());
        return colours == std::set<std::uint32_t>{0xFFB04040, 0xFFE4E4E4};
    }
    /// Clicks the entry in the open list.
    void PickWithTheMouse(const char* list, int entry) {
        auto& combo = Find<QComboBox>(list);
        combo.showPopup();
        QAbstractItemView* const view = combo.view();
        const QPoint place = view->visualRect(view->model()->index(entry, 0)).center();
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, place);
    }
    static void Turn(QWidget& control) {
        const QPointF middle = control.rect().center();
        QWheelEvent event(middle, control.mapToGlobal(middle), QPoint(), QPoint(0, -120), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&control, &event);
    }
};

} // namespace

TEST_F(Selecting, AMapIsFetchedInTwoStepsAndShown) {
    StartWith(MakeLibrary("a.Atlavex", {{20, 20}, {30, 45}}));
    Pick("ddMaps", 1);
    EXPECT_THAT(TakeCalls(), ElementsAre("MapIdAt 2", "GetMap"));
    EXPECT_EQ(TextOf("lbSize"), "Bitmap size: (30, 45)");
    EXPECT_EQ(State().rememberedMap, 1);
    EXPECT_EQ(State().currentMap->Name(), "map2");
    ASSERT_NE(Find<KarvelViewer>("viewerMap").Image(), nullptr);
    EXPECT_EQ(Find<KarvelViewer>("viewerMap").Image()->Height(), 45);
    EXPECT_FALSE(State().modified);
}

TEST_F(Selecting, TheSameEntryTwiceIsFetchedTwice) {
    StartWith(MakeLibrary("a.Atlavex", {{20, 20}, {30, 45}}, 1));
    const auto map = State().currentMap;
    const auto icon = State().currentIcon;
    Pick("ddMaps", 0);
    Pick("ddMaps", 0);
    EXPECT_THAT(TakeCalls(), ElementsAre("MapIdAt 1", "GetMap", "MapIdAt 1", "GetMap"));
    EXPECT_EQ(State().currentMap, map);
    ClickTab(1);
    Pick("ddIcons", 0);
    Pick("ddIcons", 0);
    EXPECT_THAT(TakeCalls(), ElementsAre("IconIdAt 1", "GetIcon", "IconIdAt 1", "GetIcon"));
    EXPECT_EQ(State().currentIcon, icon);
}

TEST_F(Selecting, WithTheMouseGivesTheViewerTheFocus) {
    StartWith(MakeLibrary("a.Atlavex", {{20, 20}, {30, 45}}, 2));
    Focus("ddMaps");
    PickWithTheMouse("ddMaps", 1);
    EXPECT_EQ(State().currentMap->Name(), "map2");
    EXPECT_TRUE(Find<QWidget>("viewerMap").hasFocus());
    Pick("ddMaps", 0);
    EXPECT_EQ(State().currentMap->Name(), "map1");
    EXPECT_TRUE(Find<QWidget>("ddMaps").hasFocus());
    QTest::keyClick(&Find<QComboBox>("ddMaps"), Qt::Key_Down);
    EXPECT_EQ(State().currentMap->Name(), "map2");
    EXPECT_TRUE(Find<QWidget>("ddMaps").hasFocus());
    ClickTab(1);
    PickWithTheMouse("ddIcons", 1);
    EXPECT_EQ(State().currentIcon->Name(), "icon2");
    EXPECT_TRUE(Find<QWidget>("viewerIcon").hasFocus());
    Pick("ddIcons", 0);
    EXPECT_EQ(State().currentIcon->Name(), "icon1");
    EXPECT_TRUE(Find<QWidget>("ddIcons").hasFocus());
}

TEST_F(Selecting, AnUnscaledMapCannotBeLeft) {
    StartWith(MakeMixedLibrary("a.Atlavex", {false, true, false}));
    Expecting().ExpectBox(ScaleBeforeChoosing);
    Pick("ddMaps", 1);
    EXPECT_EQ(EntryOf("ddMaps"), 0);
    EXPECT_THAT(TakeCalls(), IsEmpty());
    EXPECT_EQ(State().currentMap->Name(), "map1");
    EXPECT_FALSE(State().mapScaled);
}

TEST_F(Selecting, AnUnscaledMapPickedAgainSaysNothing) {
    StartWith(MakeMixedLibrary("a.Atlavex", {false, true}));
    Pick("ddMaps", 0);
    EXPECT_THAT(TakeCalls(), IsEmpty());
    EXPECT_EQ(EntryOf("ddMaps"), 0);
}

TEST_F(Selecting, AnUnscaledMapMayBeChosenAndThenCannotBeLeft) {
    StartWith(MakeMixedLibrary("a.Atlavex", {true, false}));
    EXPECT_EQ(TextOf("lStatus"), ScaledStatus);
    Pick("ddMaps", 1);
    EXPECT_EQ(TextOf("lStatus"), NotScaledStatus);
    EXPECT_FALSE(State().mapScaled);
    Expecting().ExpectBox(ScaleBeforeChoosing);
    Pick("ddMaps", 0);
    EXPECT_EQ(EntryOf("ddMaps"), 1);
}

TEST_F(Selecting, WithoutACurrentMapAnyEntryMayBeChosen) {
    StartWith(MakeMixedLibrary("a.Atlavex", {false, true}));
    ExpectFileDialog(QStringLiteral("Open Atlavex"), std::nullopt);
    Choose("mFileOpenAtlavex");
    ASSERT_EQ(State().currentMap, nullptr);
    Pick("ddMaps", 1);
    EXPECT_EQ(State().currentMap->Name(), "map2");
    EXPECT_TRUE(State().mapScaled);
}

TEST_F(Selecting, TheListMovesByKeysToo) {
    StartWith(MakeLibrary("a.Atlavex", {{20, 20}, {30, 45}}));
    Focus("ddMaps");
    QTest::keyClick(&Find<QComboBox>("ddMaps"), Qt::Key_Down);
    EXPECT_EQ(State().currentMap->Name(), "map2");
    EXPECT_EQ(TextOf("lbSize"), "Bitmap size: (30, 45)");
}

TEST_F(Selecting, AnIconIsFetchedInTwoStepsAndShown) {
    StartWith(MakeLibrary("a.Atlavex", {{20, 20}}, 2));
    ClickTab(1);
    Pick("ddIcons", 1);
    EXPECT_THAT(TakeCalls(), ElementsAre("IconIdAt 2", "GetIcon"));
    EXPECT_EQ(State().currentIcon->Name(), "icon2");
    EXPECT_EQ(TextOf("lbSize"), "Icon size: (16, 16)");
    ASSERT_NE(Find<KarvelViewer>("viewerIcon").Image(), nullptr);
    EXPECT_EQ(Find<KarvelViewer>("viewerIcon").Image()->Width(), 16);
}

TEST_F(Selecting, IconsCanBeChosenWhileTheMapIsUnscaled) {
    Start();
    const std::string file = MakeMixedLibrary("a.Atlavex", {false});
    {
        const auto library = Open(file);
        AddIcon(*library, MakeSheet(PixelFormat::Rgba, 7, 9), "x");
        AddIcon(*library, MakeSheet(PixelFormat::Rgba, 8, 6), "y");
        library->SaveToFile(file, {});
    }
    OpenByMenu(file);
    ClickTab(1);
    Pick("ddIcons", 1);
    EXPECT_EQ(TextOf("lbSize"), "Icon size: (8, 6)");
}

TEST_F(Selecting, TheIconsBarsMoveTheIcon) {
    const std::string file = MakeLibrary("a.Atlavex", {{20, 20}});
    {
        const auto library = Open(file);
        AddIcon(*library, MakeSheet(PixelFormat::Rgb, 1500, 1300), "large");
        library->SaveToFile(file, {});
    }
    StartWith(file);
    ClickTab(1);
    const auto& viewer = Find<KarvelViewer>("viewerIcon");
    auto& horizontal = Find<QScrollBar>("hscrollIcon");
    auto& vertical = Find<QScrollBar>("vscrollIcon");
    EXPECT_EQ(horizontal.maximum(), 1500 - viewer.PixelWidth());
    horizontal.setFocus();
    QTest::keyClick(&horizontal, Qt::Key_End);
    EXPECT_EQ(viewer.HorizontalPosition(), horizontal.maximum());
    EXPECT_EQ(viewer.VerticalPosition(), 0);
    vertical.setSliderPosition(33); // as a drag does
    EXPECT_EQ(viewer.VerticalPosition(), 33);
    EXPECT_EQ(Find<QScrollBar>("hscrollMap").value(), 0);
}

TEST_F(Selecting, ThePagesShowOneViewerAndItsSize) {
    StartWith(MakeLibrary("a.Atlavex", {{20, 30}}, 1));
    ClickTab(1);
    EXPECT_TRUE(Find<QWidget>("viewerIcon").isVisible());
    EXPECT_FALSE(Find<QWidget>("viewerMap").isVisible());
    EXPECT_EQ(TextOf("lbSize"), "Icon size: (16, 16)");
    ClickTab(0);
    EXPECT_FALSE(Find<QWidget>("viewerIcon").isVisible());
    EXPECT_TRUE(Find<QWidget>("viewerMap").isVisible());
    EXPECT_EQ(TextOf("lbSize"), "Bitmap size: (20, 30)");
}

TEST_F(Selecting, APageWithoutAnImageHasNoSize) {
    StartWith(MakeLibrary("a.Atlavex", {{20, 30}}));
    ClickTab(1);
    EXPECT_EQ(TextOf("lbSize"), "");
    ClickTab(0);
    EXPECT_EQ(TextOf("lbSize"), "Bitmap size: (20, 30)");
}

TEST_F(Selecting, TheWheelOverAListWithoutFocusChoosesNothing) {
    StartWith(MakeLibrary("a.Atlavex", {{20, 20}, {30, 45}}, 2));
    Focus("viewerMap");
    Turn(Find<QComboBox>("ddMaps"));
    Turn(Find<QSlider>("sldZoom"));
    EXPECT_EQ(EntryOf("ddMaps"), 0);
    EXPECT_EQ(Find<QSlider>("sldZoom").value(), 0);
    ClickTab(1);
    Focus("viewerIcon");
    Turn(Find<QComboBox>("ddIcons"));
    EXPECT_EQ(EntryOf("ddIcons"), 0);
    EXPECT_THAT(TakeCalls(), IsEmpty());
}

TEST_F(Selecting, TheWheelMovesAListThatHasTheFocus) {
    StartWith(MakeLibrary("a.Atlavex", {{20, 20}, {30, 45}}));
    Focus("ddMaps");
    Turn(Find<QComboBox>("ddMaps"));
    EXPECT_EQ(State().currentMap->Name(), "map2");
}

TEST_F(Selecting, ANameThatLooksLikeMarkupIsShownAsItIs) {
    const std::string file = MakeLibrary("a.Atlavex", {{20, 20}});
    {
        const auto library = Open(file);
        MapAt(*library, 1)->SetMetadata("name", "<b>bold</b> & \xC3\xA6\xC3\xB8\xC3\xA5");
        library->SaveToFile(file, {});
    }
    StartWith(file);
    EXPECT_EQ(EntriesOf("ddMaps"), QStringList(QStringLiteral("<b>bold</b> & æøå")));
}

TEST_F(Selecting, ADamagedIconIsShownHatchedAndBecomesCurrent) {
    const std::string file = MakeLibrary("a.Atlavex", {{20, 20}}, 2);
    DamageIcon(file, 2);
    StartWith(file);
    ClickTab(1);
    EXPECT_FALSE(ShowsHatching());
    Pick("ddIcons", 1);
    EXPECT_EQ(EntryOf("ddIcons"), 1);
    EXPECT_EQ(State().currentIcon->Name(), "icon2");
    EXPECT_EQ(TextOf("lbSize"), "Icon size: (16, 16)");
    EXPECT_TRUE(ShowsHatching());
    Pick("ddIcons", 0);
    EXPECT_FALSE(ShowsHatching());
}

TEST_F(Selecting, ADamagedFirstIconIsShownAsTheMapsAre) {
    const std::string file = MakeLibrary("a.Atlavex", {{20, 30}}, 2);
    DamageIcon(file, 1);
    StartWith(file);
    EXPECT_EQ(Title(), "Quorvant Studio - " + file);
    EXPECT_EQ(EntryOf("ddIcons"), 0);
    EXPECT_TRUE(ShowsHatching());
    EXPECT_TRUE(State().mapScaled);
}

TEST_F(Selecting, ADamagedIconCanBeRenamedMovedAndDeleted) {
    const std::string file = MakeLibrary("a.Atlavex", {{20, 20}}, 2);
    DamageIcon(file, 1);
    StartWith(file);
    Expecting().Expect(QStringLiteral("frmMetadata"), [](QWidget& window) {
        TypeInto(window, "tbMetaName", QStringLiteral("torn"));
        Click(window, "btnOK");
    });
    Choose("mIconsRenameIcons");
    Edit(QStringLiteral("7"));
    Choose("mFileSaveAtlavex");
    {
        const auto saved = Open(file);
        EXPECT_EQ(IconAt(*saved, 1)->Name(), "torn");
        EXPECT_EQ(IconAt(*saved, 1)->OffsetX(), 7);
        EXPECT_EQ(saved->Verify().size(), 1U);
    }
    Expecting().ExpectBox(QStringLiteral("Are you sure you want to delete 'torn' Icon?"), QMessageBox::Yes);
    Choose("mIconsDeleteIcon");
    EXPECT_EQ(EntriesOf("ddIcons"), QStringList{"icon2"});
    Choose("mFileSaveAtlavex");
    EXPECT_TRUE(Open(file)->Verify().empty());
}
