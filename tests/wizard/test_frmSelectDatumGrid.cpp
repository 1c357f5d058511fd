#include "catalogue/modCountryData.h"
#include "catalogue/modCountryGadgets.h"
#include "tests/support/desktop/Controls.h"
#include "tests/support/desktop/ExpectedTexts.h"
#include "tests/support/desktop/ModalScript.h"
#include "wizard/GridChooser.h"
#include "wizard/frmSelectDatumGrid.h"

#include <QAbstractItemView>
#include <QLabel>
#include <QPlainTextEdit>
#include <QRadioButton>

namespace {

const auto GridForm = QStringLiteral("frmSelectDatumGrid");

std::vector<std::string> Texts(std::span<const std::string_view> texts) {
    return {texts.begin(), texts.end()};
}

/// Shows the form once; `act` has to end it.
bool Show(frmSelectDatumGrid& form, const std::function<void(QWidget&)>& act) {
    ModalScript script;
    script.Expect(GridForm, act);
    return form.ShowModal();
}

/// Chooses a grid of a country; what follows is up to the test.
void ChooseGrid(QWidget& form, const QString& country, const QString& grid) {
    Pick(form, "ddCountry", country);
    Click(form, "rdShowGrid");
    Pick(form, "ddGrid", grid);
}

} // namespace

TEST(SelectDatumGrid, OpensWithCustomAndBothChoicesHidden) {
    frmSelectDatumGrid form;
    EXPECT_FALSE(Show(form, [](QWidget& shown) {
        EXPECT_EQ(shown.windowTitle().toStdString(), "Wizard Step 1: Select Datum or Grid");
        EXPECT_EQ(Control<QLabel>(shown, "Label3").text().toStdString(),
                  "Wizard step 1: Select Datum or Grid");
        EXPECT_EQ(Entries(shown, "ddCountry"), Texts(Countries));
        EXPECT_EQ(Control<QComboBox>(shown, "ddCountry").currentText().toStdString(), "<Custom>");
        EXPECT_TRUE(Control<QRadioButton>(shown, "rbShowDatum").isChecked());
        EXPECT_FALSE(IsShown(shown, "frameDatum"));
        EXPECT_FALSE(IsShown(shown, "frameGrid"));
        Click(shown, "bCancel");
    }));
    EXPECT_FALSE(form.Confirmed());
}

TEST(SelectDatumGrid, ExplainsItself) {
    frmSelectDatumGrid form;
    Show(form, [](QWidget& shown) {
        const auto& help = Control<QPlainTextEdit>(shown, "txtHelp");
        EXPECT_TRUE(help.isReadOnly());
        EXPECT_EQ(help.font().family().toStdString(), "Courier New");
        EXPECT_EQ(
            help.toPlainText().toStdString(),
            "In this step you need to specify which coordinate system your raster map is using (for map "
            "projection).\nI. Select a Country / Region.\nII. Select if the coordinates are spcified in "
            "lat/lon or easting/northing \nIII. Select the grid or datum. \nThe coordniate system choosen is "
            "that in which the map is conformal.\nConformality - When the scale of a map at any point on the "
            "map is the same in any direction, the projection is conformal. Meridians (lines of longitude) "
            "and parallels (lines of latitude) intersect at right angles. Shape is preserved locally on "
            "conformal maps.");
        Click(shown, "bCancel");
    });
}

TEST(SelectDatumGrid, HasEveryCaption) {
    frmSelectDatumGrid form;
    Show(form, [](QWidget& shown) {
        const std::vector<std::pair<const char*, const char*>> frames{{"Frame2", "I. Country / Region"},
                                                                      {"Frame3", "II. Datum or Grid"},
                                                                      {"frameDatum", "III. Select datum"},
                                                                      {"frameGrid", "III. Select grid"}};
        for (const auto& [name, caption] : frames)
            EXPECT_EQ(Control<QGroupBox>(shown, name).title().toStdString(), caption);
        const std::vector<std::pair<const char*, const char*>> buttons{
            {"rbShowDatum", "Longitude / Latitude"},
            {"rdShowGrid", "Easting / Northing"},
            {"bCancel", "Cancel"},
            {"bNext", "Next ->"}};
        for (const auto& [name, caption] : buttons)
            EXPECT_EQ(Control<QAbstractButton>(shown, name).text().toStdString(), caption);
        EXPECT_EQ(Control<QLabel>(shown, "lZone").text().toStdString(), "Zone:");
        EXPECT_EQ(Control<QLabel>(shown, "lURL").text().toStdString(), "Help");
        Click(shown, "bCancel");
    });
}

TEST(SelectDatumGrid, OffersWhatEachCountryHasAndSelectsTheFirst) {
    frmSelectDatumGrid form;
    Show(form, [](QWidget& shown) {
        for (const CountryRow& row : CountryTable()) {
            Pick(shown, "ddCountry", QString::fromLatin1(row.country.data(), qsizetype(row.country.size())));
            EXPECT_EQ(Entries(shown, "ddGrid"), Texts(row.grids));
            EXPECT_EQ(Entries(shown, "ddDatum"), Texts(row.datums));
            EXPECT_EQ(Control<QComboBox>(shown, "ddGrid").currentIndex(), 0);
            EXPECT_EQ(Control<QComboBox>(shown, "ddDatum").currentIndex(), 0);
            EXPECT_EQ(IsShown(shown, "txtZone"), GridHasNumericZone(row.grids.front())) << row.country;
        }
        Click(shown, "bCancel");
    });
}

TEST(SelectDatumGrid, ShowsOneFrameAndKeepsTheListsWhenTheOptionChanges) {
    frmSelectDatumGrid form;
    Show(form, [](QWidget& shown) {
        Pick(shown, "ddCountry", QStringLiteral("Denmark"));
        EXPECT_TRUE(IsShown(shown, "frameDatum"));
        EXPECT_FALSE(IsShown(shown, "frameGrid"));
        Pick(shown, "ddDatum", QStringLiteral("ED50 Denmark"));
        Click(shown, "rdShowGrid");
        EXPECT_FALSE(IsShown(shown, "frameDatum"));
        EXPECT_TRUE(IsShown(shown, "frameGrid"));
        Pick(shown, "ddGrid", QStringLiteral("System 45 (Bornholm)"));
        Click(shown, "rbShowDatum");
        EXPECT_EQ(Control<QComboBox>(shown, "ddDatum").currentText().toStdString(), "ED50 Denmark");
        EXPECT_EQ(Control<QComboBox>(shown, "ddGrid").currentText().toStdString(), "System 45 (Bornholm)");
        Pick(shown, "ddCountry", QStringLiteral("<Custom>"));
        EXPECT_FALSE(IsShown(shown, "frameDatum"));
        EXPECT_EQ(Control<QComboBox>(shown, "ddDatum").currentIndex(), -1);
        EXPECT_EQ(Control<QComboBox>(shown, "ddGrid").currentIndex(), -1);
        Click(shown, "bCancel");
    });
}

TEST(SelectDatumGrid, ShowsTheZoneFieldThatTheGridNeeds) {
    frmSelectDatumGrid form;
    Show(form, [](QWidget& shown) {
        ChooseGrid(shown, QStringLiteral("France"), QStringLiteral("UTM (ed50)"));
        EXPECT_TRUE(IsShown(shown, "txtZone"));
        EXPECT_TRUE(IsShown(shown, "lZone"));
        EXPECT_FALSE(IsShown(shown, "ddZone"));
        Pick(shown, "ddGrid", QStringLiteral("French Grid (ntf)"));
        EXPECT_FALSE(IsShown(shown, "txtZone"));
        EXPECT_FALSE(IsShown(shown, "lZone"));
        EXPECT_TRUE(IsShown(shown, "ddZone"));
        EXPECT_EQ(Entries(shown, "ddZone"), ZonesOf("French Grid (ntf)"));
        EXPECT_EQ(Control<QComboBox>(shown, "ddZone").currentIndex(), 0);
        Pick(shown, "ddGrid", QStringLiteral("French Grid (rgf93)"));
        EXPECT_FALSE(IsShown(shown, "txtZone"));
        EXPECT_FALSE(IsShown(shown, "ddZone"));
        Click(shown, "bCancel");
    });
}

TEST(SelectDatumGrid, TakesAListedDatum) {
    frmSelectDatumGrid form;
    EXPECT_TRUE(Show(form, [](QWidget& shown) {
        Pick(shown, "ddCountry", QStringLiteral("Denmark"));
        Pick(shown, "ddDatum", QStringLiteral("ED50 Denmark"));
        Click(shown, "bNext");
    }));
    EXPECT_TRUE(form.UseLonLat());
    EXPECT_FALSE(form.UseGrid());
    EXPECT_EQ(form.Datum(), MakeDatum(27));
    EXPECT_FALSE(form.Grid().has_value());
    EXPECT_EQ(form.Zone(), 0);
}

struct GridCase {
    const char* country;
    const char* grid;
    const char* typedZone; ///< null: none is typed
    const char* listZone;  ///< null: none is picked
    std::int16_t zone;
    std::int16_t identifier;
};

TEST(SelectDatumGrid, TakesAListedGridWithItsZone) {
    const std::vector<GridCase> cases{
        {"International", "UTM North (wgs84)", "32", nullptr, 32, 1},
        {"International", "UTM North (wgs84)", "32.9", nullptr, 32, 1},
        {"International", "UTM South (wgs84)", "1", nullptr, 1, 2},
        {"Germany", "German Grid (Potsdam)", "60", nullptr, 60, 29},
        {"Switzerland", "Swiss Grid (ch1903)", nullptr, nullptr, 0, 7},
        {"United States", "State Plane (nad27)", nullptr, "0101 Alabama East", 101, 30},
        {"United States", "State Plane (nad83)", nullptr, "5200 Puerto Rico", 5200, 31},
        // Whatever zone of a zone list is shown, the first one is handed on.
        {"Norway", "Norwegian Grid (ngo48)", nullptr, "Zone (Akse) 8", 0, 37},
    };
    for (const GridCase& row : cases) {
        SCOPED_TRACE(row.grid);
        frmSelectDatumGrid form;
        EXPECT_TRUE(Show(form, [&row](QWidget& shown) {
            ChooseGrid(shown, QString::fromLatin1(row.country), QString::fromLatin1(row.grid));
            if (row.typedZone != nullptr)
                Type(shown, "txtZone", QString::fromLatin1(row.typedZone));
            if (row.listZone != nullptr)
                Pick(shown, "ddZone", QString::fromLatin1(row.listZone));
            Click(shown, "bNext");
        }));
        EXPECT_FALSE(form.UseLonLat());
        EXPECT_TRUE(form.UseGrid());
        EXPECT_EQ(form.Zone(), row.zone);
        EXPECT_EQ(form.Grid(), MakeGrid(row.identifier, row.zone));
        EXPECT_FALSE(form.Datum().has_value());
    }
}

TEST(SelectDatumGrid, RefusesZonesThatAreNone) {
    for (const char* const zone : {"0", "61", "", "x", "-5", " 5", "0.9", "99999", "3,5x"}) {
        SCOPED_TRACE(zone);
        frmSelectDatumGrid form;
        ModalScript script;
        script
            .Expect(GridForm,
                    [zone](QWidget& shown) {
                        ChooseGrid(shown, QStringLiteral("International"), QStringLiteral("UTM (ed50)"));
                        Type(shown, "txtZone", QString::fromLatin1(zone));
                        Click(shown, "bNext");
                        EXPECT_TRUE(shown.isVisible());
                        EXPECT_EQ(shown.focusWidget(), &Control<QLineEdit>(shown, "txtZone"));
                        QTest::keyClick(&shown, Qt::Key_Escape);
                    })
            .ExpectBox(InvalidZone);
        EXPECT_FALSE(form.ShowModal());
    }
}

TEST(SelectDatumGrid, SaysWhenNothingIsSelected) {
    const std::vector<std::pair<const char*, QString>> cases{
        {"ddDatum", QStringLiteral("No datum selected!")}, {"ddGrid", QStringLiteral("No grid selected!")}};
    for (const auto& [list, message] : cases) {
        frmSelectDatumGrid form;
        ModalScript script;
        script
            .Expect(GridForm,
                    [list = list](QWidget& shown) {
                        Pick(shown, "ddCountry", QStringLiteral("Italy"));
                        if (std::string_view(list) == "ddGrid")
                            Click(shown, "rdShowGrid");
                        Control<QComboBox>(shown, list).setCurrentIndex(-1);
                        Click(shown, "bNext");
                        EXPECT_TRUE(shown.isVisible());
                        Click(shown, "bCancel");
                    })
            .ExpectBox(message);
        EXPECT_FALSE(form.ShowModal());
    }
}

TEST(SelectDatumGrid, IsLeftByEscapeAndByEnter) {
    frmSelectDatumGrid form;
    EXPECT_FALSE(Show(form, [](QWidget& shown) { QTest::keyClick(&shown, Qt::Key_Escape); }));
    EXPECT_TRUE(Show(form, [](QWidget& shown) {
        Pick(shown, "ddCountry", QStringLiteral("Sweden"));
        QTest::keyClick(&Control<QWidget>(shown, "rbShowDatum"), Qt::Key_Return);
    }));
    EXPECT_EQ(form.Datum(), MakeDatum(1));
}

TEST(SelectDatumGrid, IgnoresTheWheelOverAListThatIsNotInUse) {
    frmSelectDatumGrid form;
    Show(form, [](QWidget& shown) {
        Pick(shown, "ddCountry", QStringLiteral("Sweden"));
        Control<QWidget>(shown, "bNext").setFocus();
        auto& list = Control<QComboBox>(shown, "ddCountry");
        QWheelEvent turn(QPointF(5, 5), list.mapToGlobal(QPointF(5, 5)), {}, {0, -120}, Qt::NoButton,
                         Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&list, &turn);
        EXPECT_EQ(list.currentText().toStdString(), "Sweden");
        Click(shown, "bCancel");
    });
}

TEST(ZoneCombo, IsFilledForListsAndHiddenForTheRest) {
    QComboBox list;
    EXPECT_TRUE(FillZoneCombo(list, QStringLiteral("State Plane (nad27)")));
    EXPECT_FALSE(list.isHidden());
    EXPECT_EQ(list.count(), 131);
    EXPECT_EQ(list.itemText(0).toStdString(), "0101 Alabama East");
    EXPECT_EQ(list.currentIndex(), -1);
    EXPECT_TRUE(FillZoneCombo(list, QStringLiteral("State Plane (nad83)")));
    EXPECT_EQ(list.count(), 123);
    EXPECT_FALSE(FillZoneCombo(list, QStringLiteral("UTM (ed50)")));
    EXPECT_TRUE(list.isHidden());
    EXPECT_EQ(list.count(), 123);
}

TEST(GridAndDatumCombos, AreEmptyForWhatIsNoCountry) {
    QComboBox grids;
    QComboBox datums;
    FillGridDatumCombos(grids, &datums, QStringLiteral("Denmark"));
    EXPECT_EQ(grids.count(), 5);
    EXPECT_EQ(datums.count(), 3);
    EXPECT_EQ(grids.currentIndex(), -1);
    FillGridDatumCombos(grids, nullptr, QStringLiteral("Italy"));
    EXPECT_EQ(grids.count(), 4);
    EXPECT_EQ(datums.count(), 3);
    FillGridDatumCombos(grids, &datums, QStringLiteral("<Custom>"));
    EXPECT_EQ(grids.count(), 0);
    EXPECT_EQ(datums.count(), 0);
}

TEST(SelectDatumGrid, FindsAStatePlaneZoneByPartOfItsName) {
    struct Row {
        const char* typed;
        const char* found;
    };
    // "kan" is also in Arkansas, which stands before Kansas.
    for (const Row& row : {Row{"oreg", "3601 Oregon North"}, Row{"kan", "1501 Kansas North"},
                           Row{"0402", "0402 California Zone 2"}, Row{"york e", "3101 New York East"},
                           Row{"bama w", "0102 Alabama West"}, Row{"qqq", "0101 Alabama East"}}) {
        for (const bool isOpen : {false, true}) {
            SCOPED_TRACE(row.typed);
            frmSelectDatumGrid form;
            Show(form, [&row, isOpen](QWidget& shown) {
                ChooseGrid(shown, QStringLiteral("United States"), QStringLiteral("State Plane (nad27)"));
                auto& zones = Control<QComboBox>(shown, "ddZone");
                zones.setFocus();
                if (isOpen)
                    zones.showPopup();
                for (const char key : std::string_view(row.typed)) {
                    // A blank opens the list.
                    QWidget* const receiver = zones.view()->isVisible() ? zones.view() : nullptr;
                    QTest::keyClick(receiver != nullptr ? receiver : &zones, key);
                }
                if (zones.view()->isVisible())
                    QTest::keyClick(zones.view(), Qt::Key_Return);
                EXPECT_EQ(zones.currentText().toStdString(), row.found);
                Click(shown, "bCancel");
            });
        }
    }
}
