#include "component/AtlavexLibrary.h"
#include "tests/support/TempFolder.h"
#include "tests/support/desktop/Controls.h"
#include "tests/support/desktop/ExpectedTexts.h"
#include "tests/support/desktop/ModalScript.h"
#include "tests/support/desktop/RecordingMap.h"
#include "wizard/clsWorldfileWizard.h"

#include <QImage>
#include <QLabel>
#include <QPlainTextEdit>

namespace {

const auto WorldfileForm = QStringLiteral("frmSelectWorldfileGrid");

class WorldfileWizard : public ::testing::Test {
protected:
    WorldfileWizard() { WriteWholeFile(worldfile, "2\n0\n0\n-2\n1000\n5000\n"); }

    bool Run(AtlavexMap& target, Orientation turn = Orientation::TopLeft) {
        return clsWorldfileWizard(nullptr).DoSelectDatumGrid(
            target, QString::fromStdString(worldfile.string()), turn);
    }

    void ExpectUtm32() {
        script.Expect(WorldfileForm, [](QWidget& shown) {
            Pick(shown, "ddCountry", QStringLiteral("International"));
            Pick(shown, "ddGrid", QStringLiteral("UTM North (wgs84)"));
            Type(shown, "txtZone", QStringLiteral("32"));
            Click(shown, "bNext");
        });
    }

    TempFolder folder;
    std::filesystem::path worldfile = folder / "sheet.tfw";
    ModalScript script;
    RecordingMap map;
};

} // namespace

TEST_F(WorldfileWizard, HandsTheGridAndThreePointsToTheMap) {
    ExpectUtm32();
    EXPECT_TRUE(Run(map));
    EXPECT_THAT(map.calls,
                ::testing::ElementsAre(
                    "SetGridIdentifier 1", "SetZone 32", Wgs84Datum, "SetMapGrid 1 32 0 9 0.9996 5e+05 0 0 0",
                    "SetScalingThreePoints 1002 4998 1 1, 1002 4800 1 100, 1200 4800 100 100"));
}

TEST_F(WorldfileWizard, TurnsTheNumbersWithTheImage) {
    ExpectUtm32();
    EXPECT_TRUE(Run(map, Orientation::BottomRight));
    // Turned by half a circle: the last stored pixel is the first one shown.
    EXPECT_EQ(map.calls.back(), "SetScalingThreePoints 1796 4404 1 1, 1796 4602 1 100, 1598 4602 100 100");
}

TEST_F(WorldfileWizard, OpensWithCustomAndTheGridDisabled) {
    script.Expect(WorldfileForm, [](QWidget& shown) {
        EXPECT_EQ(shown.windowTitle().toStdString(), "Worldfile Wizard");
        EXPECT_EQ(Control<QLabel>(shown, "Label3").text().toStdString(), "Select Grid");
        EXPECT_EQ(Control<QGroupBox>(shown, "frameCountry").title().toStdString(), "I. Country / Region");
        EXPECT_EQ(Control<QGroupBox>(shown, "frameGrid").title().toStdString(), "II. Select grid");
        EXPECT_EQ(Control<QComboBox>(shown, "ddCountry").currentText().toStdString(), "<Custom>");
        for (const char* const name : {"ddGrid", "ddZone", "frameGrid"})
            EXPECT_FALSE(Control<QWidget>(shown, name).isEnabled()) << name;
        EXPECT_EQ(
            Control<QPlainTextEdit>(shown, "txtHelp").toPlainText().toStdString(),
            "In this step you need to specify which coordinate system your raster map is using (for map "
            "projection).\nI. Select a Country / Region.\nII. Select the grid. \n(The scale is extracted "
            "from "
            "the worldfile.)");
        Pick(shown, "ddCountry", QStringLiteral("Austria"));
        for (const char* const name : {"ddGrid", "ddZone", "frameGrid"})
            EXPECT_TRUE(Control<QWidget>(shown, name).isEnabled()) << name;
        EXPECT_EQ(Control<QComboBox>(shown, "ddGrid").currentText().toStdString(), "Bundesmeldenetz");
        EXPECT_TRUE(IsShown(shown, "ddZone"));
        Click(shown, "bCancel");
    });
    script.ExpectBox(WizardCancelled);
    EXPECT_FALSE(Run(map));
    EXPECT_TRUE(map.calls.empty());
}

TEST_F(WorldfileWizard, StaysOpenUntilThereIsAGrid) {
    script
        .Expect(WorldfileForm,
                [](QWidget& shown) {
                    Click(shown, "bNext");
                    EXPECT_TRUE(shown.isVisible());
                    Pick(shown, "ddCountry", QStringLiteral("Italy"));
                    Control<QComboBox>(shown, "ddGrid").setCurrentIndex(-1);
                    Click(shown, "bNext");
                    Pick(shown, "ddGrid", QStringLiteral("UTM (etrs89)"));
                    Type(shown, "txtZone", QStringLiteral("61"));
                    Click(shown, "bNext");
                    Type(shown, "txtZone", QStringLiteral("33"));
                    Click(shown, "bNext");
                })
        .ExpectBox(NoCustomSystem)
        .ExpectBox(QStringLiteral("No grid selected!"))
        .ExpectBox(InvalidZone);
    EXPECT_TRUE(Run(map));
    EXPECT_EQ(map.calls[0], "SetGridIdentifier 13");
    EXPECT_EQ(map.calls[1], "SetZone 33");
}

TEST_F(WorldfileWizard, TakesTheZoneWhereTheGridHasIt) {
    struct Row {
        const char* country;
        const char* grid;
        const char* listZone;
        const char* identifier;
        const char* zone;
    };
    for (const Row& row :
         {Row{"United States", "State Plane (nad27)", "5202 Puerto Rico South", "30", "5202"},
          Row{"United States", "State Plane (nad83)", "0600 Connecticut", "31", "600"},
          Row{"Finland", "Finnish Grid", "Zone 4", "9", "0"}}) {
        SCOPED_TRACE(row.grid);
        map.calls.clear();
        script.Expect(WorldfileForm, [&row](QWidget& shown) {
            Pick(shown, "ddCountry", QString::fromLatin1(row.country));
            Pick(shown, "ddGrid", QString::fromLatin1(row.grid));
            EXPECT_FALSE(IsShown(shown, "txtZone"));
            Pick(shown, "ddZone", QString::fromLatin1(row.listZone));
            Click(shown, "bNext");
        });
        EXPECT_TRUE(Run(map));
        EXPECT_EQ(map.calls[0], std::string("SetGridIdentifier ") + row.identifier);
        EXPECT_EQ(map.calls[1], std::string("SetZone ") + row.zone);
    }
}

TEST_F(WorldfileWizard, HandsNothingOverWhenTheWorldfileIsNone) {
    for (const char* const content :
         {"", "1\n2\n3\n", "1\n2\nx\n4\n5\n6\n", "1e308\n0\n1e308\n0\n1e308\n1\n"}) {
        WriteWholeFile(worldfile, content);
        ExpectUtm32();
        std::string sentence;
        script.Expect(QStringLiteral("MessageBox"), [&sentence](QWidget& shown) {
            const auto& box = dynamic_cast<QMessageBox&>(shown);
            sentence = box.text().toStdString();
            EXPECT_EQ(box.icon(), QMessageBox::Critical);
            QTest::keyClick(&shown, Qt::Key_Return);
        });
        EXPECT_FALSE(Run(map));
        EXPECT_THAT(sentence, ::testing::StartsWith("Invalid scaling: "));
        EXPECT_TRUE(map.calls.empty());
    }
}

TEST_F(WorldfileWizard, StopsAtTheFirstCallThatFails) {
    map.refuse = "SetMapGrid";
    ExpectUtm32();
    script.ExpectBox(QStringLiteral("Invalid scaling: No."));
    EXPECT_FALSE(Run(map));
    EXPECT_EQ(map.calls.size(), 4U);
}

TEST_F(WorldfileWizard, ScalesARealMapAndNamesItsGrid) {
    QImage image(400, 300, QImage::Format_RGB32);
    image.fill(Qt::white);
    image.save(QString::fromStdString((folder / "sheet.png").string()));
    const auto library = CreateAtlavexLibrary();
    const auto sheet = library->AddMapFromImageFile((folder / "sheet.png").string(), "sheet", 256, 256);
    ExpectUtm32();
    EXPECT_TRUE(Run(*sheet));
    EXPECT_NEAR(sheet->PixelToWorld({200, 100}).x, 1400, 1e-9);
    EXPECT_NEAR(sheet->PixelToWorld({200, 100}).y, 4800, 1e-9);
    EXPECT_EQ(sheet->MapGeoreference().gridIdentifier, 1);
    EXPECT_EQ(sheet->MapGeoreference().zone, "32");
}

TEST_F(WorldfileWizard, ThatFailsChangesNothing) {
    QImage image(400, 300, QImage::Format_RGB32);
    image.fill(Qt::white);
    image.save(QString::fromStdString((folder / "sheet.png").string()));
    const auto library = CreateAtlavexLibrary();
    const auto sheet = library->AddMapFromImageFile((folder / "sheet.png").string(), "sheet", 256, 256);
    WriteWholeFile(worldfile, "0\n0\n0\n0\n0\n0\n");
    const auto runInvalid = [&] {
        ExpectUtm32();
        script.Expect(QStringLiteral("MessageBox"), [](QWidget& shown) {
            EXPECT_THAT(dynamic_cast<QMessageBox&>(shown).text().toStdString(),
                        ::testing::StartsWith("Invalid scaling: "));
            QTest::keyClick(&shown, Qt::Key_Return);
        });
        EXPECT_FALSE(Run(*sheet));
    };
    runInvalid();
    EXPECT_EQ(sheet->MapGeoreference(), Georeference{});
    sheet->SetMapDatum(MakeDatum(17).AsNumbers());
    sheet->SetScalingThreePoints({9, 56, 0, 0}, {10, 56, 100, 0}, {9, 55, 0, 100});
    const Georeference former = sheet->MapGeoreference();
    runInvalid();
    EXPECT_EQ(sheet->MapGeoreference(), former);
}

TEST_F(WorldfileWizard, ReportsALackOfMemoryAsAnInvalidScaling) {
    struct FullMap : RecordingMap {
        void SetScalingThreePoints(const ReferencePoint&, const ReferencePoint&,
                                   const ReferencePoint&) override {
            throw std::bad_alloc();
        }
    };
    FullMap full;
    ExpectUtm32();
    script.ExpectBox(QStringLiteral("Invalid scaling: There is not enough memory."));
    EXPECT_FALSE(Run(full));
}
