#include "platform/modGUID.h"
#include "platform/modRegistry.h"
#include "tests/app/EditingFixture.h"
#include "tests/support/desktop/ExpectedTexts.h"

namespace {

const auto NotScaledYet = QStringLiteral("You must scale the current map before adding a new map");
const QRegularExpression DateText(QStringLiteral("^\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d$"));

class AddingMaps : public EditingTest {
protected:
    void ExpectProposed(const std::string& file, const char* name) {
        ExpectMapFile(ImageNamed(file));
        ExpectSettings([name](QWidget& window) {
            EXPECT_EQ(window.windowTitle(), QStringLiteral("New map settings..."));
            EXPECT_EQ(Control<QLineEdit>(window, "tbName").text(), QLatin1String(name));
            Click(window, "btnCancel");
        });
        Choose("mBitmapNew");
    }
    /// Adds the image; a worldfile is found and refused.
    void ExpectWorldfileOffered(const std::string& file) {
        Start();
        ExpectMapFile(ImageNamed(file));
        ExpectSettingsAccepted();
        Expecting().ExpectBox(WorldfileFound, QMessageBox::No);
        ExpectWizardGivenUp();
        Choose("mBitmapNew");
        EXPECT_TRUE(Expecting().IsDone()) << file;
        EXPECT_EQ(State().pendingWorldfile, QString());
    }
    void ExpectNoWorldfileOffered(const std::string& file) {
        Start();
        AddMapByMenu(ImageNamed(file));
        EXPECT_TRUE(Expecting().IsDone()) << file;
    }
};

} // namespace

TEST_F(AddingMaps, AFirstMapMakesALibraryAndIsNotScaled) {
    Start();
    ExpectMapFile(ImageNamed("north.part.png"));
    ExpectSettings([](QWidget& window) {
        Control<QLineEdit>(window, "tbName").setText(QStringLiteral("Norden æøå 北 <b>"));
        TypeInto(window, "tbDescription", QStringLiteral("A \"description\""));
        QTest::keyClick(&Control<QComboBox>(window, "ddTileWidth"), Qt::Key_Home);
        QTest::keyClick(&Control<QComboBox>(window, "ddTileHeight"), Qt::Key_End);
        Click(window, "btnOK");
    });
    ExpectWizardGivenUp();
    Choose("mBitmapNew");

    ASSERT_NE(State().objAtlavex, nullptr);
    EXPECT_EQ(State().objAtlavex->MapCount(), 1);
    AtlavexMap& map = *State().currentMap;
    EXPECT_EQ(map.Layout().TileWidth(), 64);
    EXPECT_EQ(map.Layout().TileHeight(), 1024);
    EXPECT_TRUE(IsGUIDText(map.Identifier()));
    const auto metadata = MetadataOf(map);
    ASSERT_EQ(metadata.size(), 5u);
    EXPECT_EQ(metadata[0], std::pair(std::string("name"), std::string("Norden æøå 北 <b>")));
    EXPECT_EQ(metadata[1], std::pair(std::string("description"), std::string("A \"description\"")));
    EXPECT_EQ(metadata[2], std::pair(std::string("version"), std::string("Quorvant Studio v2.31.0")));
    EXPECT_EQ(metadata[3].first, "created");
    EXPECT_TRUE(DateText.match(QString::fromStdString(metadata[3].second)).hasMatch());
    EXPECT_EQ(metadata[4].first, "lastchanged");
    EXPECT_TRUE(DateText.match(QString::fromStdString(metadata[4].second)).hasMatch());

    EXPECT_EQ(EntriesOf("ddMaps"), QStringList{QStringLiteral("Norden æøå 北 <b>")});
    EXPECT_EQ(EntryOf("ddMaps"), 0);
    EXPECT_EQ(TextOf("lStatus"), NotScaledStatus);
    EXPECT_EQ(TextOf("lbSize"), "Bitmap size: (40, 30)");
    EXPECT_TRUE(State().modified);
    EXPECT_FALSE(State().mapScaled);
    EXPECT_EQ(Wizards(), 1);
    EXPECT_TRUE(IsEnabled("mBitmapDelete"));
    EXPECT_FALSE(IsEnabled("mnuTileExport"));
    EXPECT_TRUE(IsEnabled("mFileSaveAtlavex"));
}

TEST_F(AddingMaps, TheNameIsProposedFromTheFileNameUpToItsFirstPoint) {
    Start();
    ExpectProposed("north.part.bmp", "north");
    ExpectProposed("without", "without");
    ExpectProposed(".hidden.png", "");
    EXPECT_EQ(State().objAtlavex, nullptr);
}

TEST_F(AddingMaps, IsRefusedWhileTheCurrentMapIsNotScaled) {
    Start();
    AddMapByMenu(ImageNamed("a.png"));
    Expecting().ExpectBox(NotScaledYet);
    Choose("mBitmapNew");
    EXPECT_EQ(State().objAtlavex->MapCount(), 1);
}

TEST_F(AddingMaps, IsRefusedBeforeAnythingElseIsTouched) {
    Start();
    ExpectMapFile(ImageNamed("a.png"));
    ExpectSettingsAccepted();
    Expecting().Expect(QStringLiteral("frmSelectDatumGrid"), [](QWidget& window) { Click(window, "bNext"); });
    Expecting().Expect(QStringLiteral("frmProjection"), [](QWidget& window) {
        QTest::keyClick(&Control<QRadioButton>(window, "rbCartesian"), Qt::Key_Space);
        Click(window, "bNext");
    });
    Choose("mBitmapNew");
    const std::string prompt = TextOf("lHeader");
    EXPECT_NE(prompt, "");
    Expecting().ExpectBox(NotScaledYet);
    Choose("mBitmapNew");
    EXPECT_EQ(TextOf("lHeader"), prompt) << "the wizard goes on";
}

TEST_F(AddingMaps, OffersTheKindsOfImagesInTheirOrder) {
    const auto expectFilters = [this](const char* title, const QStringList& filters) {
        Expecting().Expect(QStringLiteral("FileDialog"), [title, filters](QWidget& window) {
            const auto& dialog = dynamic_cast<QFileDialog&>(window);
            EXPECT_EQ(dialog.windowTitle(), QLatin1String(title));
            const auto& kinds = Control<QComboBox>(window, "fileTypeCombo");
            QStringList shown;
            for (int kind = 0; kind < kinds.count(); ++kind)
                shown.append(kinds.itemText(kind));
            EXPECT_EQ(shown, filters);
            EXPECT_EQ(dialog.fileMode(), QFileDialog::ExistingFile);
            QTest::keyClick(&window, Qt::Key_Escape);
        });
    };
    Start();
    expectFilters("Open new bitmap",
                  {"All supported formats (*.bmp; *.gif; *.jpg; *.tif; *.png)", "Bitmaps (*.bmp)",
                   "Gif (*.gif)", "TIFF (*.tif)", "JPEG (*.jpg)", "PNG (*.png)", "All files (*.*)"});
    Choose("mBitmapNew");
    expectFilters("Open new icon", {"All supported formats (*.bmp; *.gif; *.jpg; *.tif)", "Bitmaps (*.bmp)",
                                    "Gif (*.gif)", "TIFF (*.tif)", "JPEG (*.jpg)", "All files (*.*)"});
    Choose("mIconsNewIcon");
}

TEST_F(AddingMaps, ShowsTheHourglassAndTakesNoCommandWhileTheImageIsRead) {
    Start();
    ExpectMapFile(ImageNamed("big.png", 1500, 1500));
    ExpectSettingsAccepted();
    ExpectWizardGivenUp();
    int events = 0;
    Probe().progressed = [&](float) {
        ++events;
        ASSERT_NE(QApplication::overrideCursor(), nullptr);
        EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
        EXPECT_TRUE(State().busy);
        EXPECT_FALSE(Window().isEnabled());
        EXPECT_EQ(State().objAtlavex->MapCount(), 0);
    };
    Choose("mBitmapNew");
    EXPECT_GT(events, 0);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    EXPECT_EQ(State().objAtlavex->MapCount(), 1);
}

TEST_F(AddingMaps, ASecondMapComesLastAndIsCurrentAndTheMapsPageShows) {
    Start(QString::fromStdString(MakeLibrary("a.Atlavex", {{20, 20}, {30, 30}}, 1)));
    EXPECT_EQ(TextOf("lStatus"), ScaledStatus);
    Find<QTabWidget>("tabAtlavex").setCurrentIndex(1);
    AddMapByMenu(ImageNamed("third.png", 50, 60));
    EXPECT_EQ(EntriesOf("ddMaps"), (QStringList{"map1", "map2", "third"}));
    EXPECT_EQ(EntryOf("ddMaps"), 2);
    EXPECT_EQ(State().currentMap->Width(), 50);
    EXPECT_EQ(State().rememberedMap, 2);
    EXPECT_EQ(Page(), 0);
    EXPECT_EQ(TextOf("lbSize"), "Bitmap size: (50, 60)");
    EXPECT_EQ(TextOf("lStatus"), NotScaledStatus);
}

TEST_F(AddingMaps, CancellingEitherDialogChangesNothing) {
    Start(QString::fromStdString(MakeLibrary("a.Atlavex", {{20, 20}})));
    ExpectMapFile(std::nullopt);
    Choose("mBitmapNew");
    EXPECT_EQ(TextOf("lHeader"), "") << "emptied before the file dialog";
    ExpectMapFile(ImageNamed("b.png"));
    ExpectSettings([](QWidget& window) { QTest::keyClick(&window, Qt::Key_Escape); });
    Choose("mBitmapNew");
    EXPECT_EQ(State().objAtlavex->MapCount(), 1);
    EXPECT_FALSE(State().modified);
    EXPECT_TRUE(IsEnabled("mnuTileExport"));
}

TEST_F(AddingMaps, AFailedImportIsToldWithItsNumberAndChangesNothing) {
    Start();
    WriteWholeFile(PathOf("empty.png"), "");
    ExpectMapFile(PathOf("empty.png"));
    ExpectSettings([this](QWidget& window) {
        Expecting().Expect(QStringLiteral("MessageBox"), [this](QWidget& box) {
            const QString text = dynamic_cast<QMessageBox&>(box).text();
            EXPECT_TRUE(text.startsWith(QStringLiteral("40: "))) << text.toStdString();
            EXPECT_TRUE(text.contains(QString::fromStdString(PathOf("empty.png")))) << text.toStdString();
            EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::ArrowCursor);
            QTest::keyClick(&box, Qt::Key_Return);
        });
        Click(window, "btnOK");
    });
    Choose("mBitmapNew");
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    ASSERT_NE(State().objAtlavex, nullptr) << "the empty library stays";
    EXPECT_EQ(State().objAtlavex->MapCount(), 0);
    EXPECT_EQ(State().currentMap, nullptr);
    EXPECT_FALSE(State().modified);
}

TEST_F(AddingMaps, ACancelledImportIsAFailedOne) {
    Start(QString::fromStdString(MakeLibrary("a.Atlavex", {{20, 20}})));
    ExpectMapFile(ImageNamed("big.png", 3000, 3000));
    ExpectSettings([this](QWidget& window) {
        Expecting().ExpectBox(QStringLiteral("10: The operation was cancelled."));
        QTimer::singleShot(0, &EditingTest::CancelProgress);
        Click(window, "btnOK");
    });
    Choose("mBitmapNew");
    EXPECT_EQ(State().objAtlavex->MapCount(), 1);
    EXPECT_FALSE(State().modified);
    EXPECT_TRUE(State().mapScaled);
    EXPECT_TRUE(Window().isEnabled());
}

TEST_F(AddingMaps, AWorldfileIsOfferedForTifAndTiffOnly) {
    WriteWholeFile(PathOf("photo.tfw"), "1\n0\n0\n-1\n1000\n5000\n");
    ExpectWorldfileOffered("photo.tif");
    ExpectWorldfileOffered("photo.tiff");
    ExpectNoWorldfileOffered("photo.TIF");
    ExpectNoWorldfileOffered("photo.Tiff");
    ExpectNoWorldfileOffered("photo.png");
    ExpectNoWorldfileOffered("photo");
    ExpectNoWorldfileOffered("other.tif");
}

TEST_F(AddingMaps, ReadOnlyWorldfilesCountHiddenOnesAndFoldersDoNot) {
    WriteWholeFile(PathOf("readonly.tfw"), "1\n0\n0\n-1\n1000\n5000\n");
    std::filesystem::permissions(PathOf("readonly.tfw"), std::filesystem::perms::owner_read);
    ExpectWorldfileOffered("readonly.tif");
    std::filesystem::create_directory(PathOf("folder.tfw"));
    ExpectNoWorldfileOffered("folder.tif");
    WriteWholeFile(PathOf(".hidden.tfw"), "1\n0\n0\n-1\n1000\n5000\n");
    ExpectNoWorldfileOffered(".hidden.tif");
}

TEST_F(AddingMaps, AnAcceptedWorldfileScalesTheMap) {
    WriteWholeFile(PathOf("photo.tfw"), "2\n0\n0\n-2\n500000\n6000000\n");
    Start();
    ExpectMapFile(ImageNamed("photo.tif"));
    ExpectSettingsAccepted();
    Expecting().ExpectBox(WorldfileFound, QMessageBox::Yes);
    Expecting().Expect(QStringLiteral("frmSelectWorldfileGrid"), [this](QWidget& window) {
        EXPECT_EQ(TextOf("lStatus"), NotScaledStatus);
        auto& countries = Control<QComboBox>(window, "ddCountry");
        countries.setCurrentIndex(countries.findText(QStringLiteral("International")));
        Q_EMIT countries.activated(countries.currentIndex());
        TypeInto(window, "txtZone", QStringLiteral("32"));
        Click(window, "bNext");
    });
    Choose("mBitmapNew");
    EXPECT_TRUE(State().mapScaled);
    EXPECT_TRUE(State().currentMap->IsScaled());
    EXPECT_EQ(TextOf("lStatus"), ScaledStatus);
    EXPECT_EQ(State().pendingWorldfile, QString());
    EXPECT_EQ(Wizards(), 0);
}

TEST_F(AddingMaps, AWorldfileGivenUpStaysWithNoLaterMap) {
    WriteWholeFile(PathOf("photo.tfw"), "2\n0\n0\n-2\n500000\n6000000\n");
    Start();
    ExpectMapFile(ImageNamed("photo.tif"));
    ExpectSettingsAccepted();
    Expecting().ExpectBox(WorldfileFound, QMessageBox::Yes);
    Expecting().Expect(QStringLiteral("frmSelectWorldfileGrid"),
                       [](QWidget& window) { QTest::keyClick(&window, Qt::Key_Escape); });
    Expecting().ExpectBox(WizardCancelled);
    Choose("mBitmapNew");
    EXPECT_FALSE(State().mapScaled);
    EXPECT_EQ(TextOf("lStatus"), NotScaledStatus);
    EXPECT_EQ(State().pendingWorldfile, QString());
}

TEST_F(AddingMaps, TheDialogRemembersItsFolder) {
    Start();
    AddMapByMenu(ImageNamed("a.png"));
    EXPECT_EQ(QueryValue(RootKey::CurrentUser, QStringLiteral("Software\\Kestova\\Brisquent\\NewBitmap"),
                         QStringLiteral("FileName"))
                  .toString()
                  .toStdString(),
              PathOf("a.png"));
}
