#include "platform/RemoteCoordinates.h"
#include "tests/support/desktop/Controls.h"
#include "tests/support/desktop/ExpectedTexts.h"
#include "tests/support/desktop/ModalScript.h"
#include "tests/support/desktop/PrivateBus.h"
#include "tests/support/desktop/RecordingMap.h"
#include "tests/support/desktop/SilentBus.h"
#include "tests/wizard/WaysOut.h"
#include "wizard/clsWorldfileWizard.h"
#include "wizard/frmSelectDatumGrid.h"
#include "wizard/frmSelectWorldfileGrid.h"

#include <QTimer>

namespace {

const QuorvantDatum TestDatum({6377563.396, 0.00667054, 446.448, -125.157, 542.06, 0.15, 0.247, 0.842,
                               -20.489});
const QuorvantGrid TestGrid(GridNumbers{1, 7, {49, -2, 0.9996012717, 400000, -100000, 0, 0}}, TestDatum);

} // namespace

TEST(RemoteCoordinates, GivesNothingWhereThereIsNoBusOrNoService) {
    QDialog form;
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere/at/all");
    EXPECT_FALSE(GetCustomDatum(form).has_value());
    const PrivateBus bus;
    EXPECT_FALSE(GetCustomDatum(form).has_value());
    EXPECT_FALSE(GetCustomGrid(form).has_value());
    EXPECT_TRUE(form.isEnabled());
}

TEST(RemoteCoordinates, GivesTheDatumAndTheGridOfTheOtherProgram) {
    PrivateBus bus;
    bus.StartService(QStringLiteral("good"));
    QDialog form;
    EXPECT_EQ(GetCustomDatum(form), TestDatum);
    EXPECT_EQ(GetCustomGrid(form), TestGrid);
}

TEST(RemoteCoordinates, GivesNothingForAnAnswerThatIsNone) {
    for (const char* const mode : {"cancelled", "short", "strange", "infinite", "quit"}) {
        SCOPED_TRACE(mode);
        QDialog form;
        {
            PrivateBus bus;
            bus.StartService(QString::fromLatin1(mode));
            EXPECT_FALSE(GetCustomDatum(form).has_value());
        }
        PrivateBus bus;
        bus.StartService(QString::fromLatin1(mode));
        EXPECT_FALSE(GetCustomGrid(form).has_value());
        EXPECT_TRUE(form.isEnabled());
    }
}

TEST(RemoteCoordinates, KeepTheFormDisabledUntilTheAnswer) {
    PrivateBus bus;
    bus.StartService(QStringLiteral("slow"));
    frmSelectDatumGrid form;
    ModalScript script;
    bool wasDisabled = false;
    script.Expect(QStringLiteral("frmSelectDatumGrid"), [&wasDisabled](QWidget& shown) {
        QTimer::singleShot(100, &shown, [&] {
            wasDisabled = !Control<QWidget>(shown, "ddCountry").isEnabled();
            // Neither does Enter, pressed once too often, leave it.
            QTest::keyClick(shown.focusWidget() != nullptr ? shown.focusWidget() : &shown, Qt::Key_Return);
            EXPECT_TRUE(shown.isVisible());
        });
        Click(shown, "bNext");
    });
    EXPECT_TRUE(form.ShowModal());
    EXPECT_TRUE(wasDisabled);
    EXPECT_EQ(form.Datum(), TestDatum);
    EXPECT_FALSE(form.Grid().has_value());
    EXPECT_TRUE(form.UseLonLat());
}

namespace {

/// Leaves both forms in each way while the other program is asked.
void GiveUpTheWaiting() {
    for (const WayOut leave : WaysOut) {
        ModalScript script;
        frmSelectDatumGrid step1;
        script.Expect(QStringLiteral("frmSelectDatumGrid"), [leave](QWidget& shown) {
            QTimer::singleShot(50, &shown, [&shown, leave] { leave(shown); });
            Click(shown, "bNext");
        });
        EXPECT_FALSE(step1.ShowModal());
        EXPECT_TRUE(Control<QWidget>(step1, "ddCountry").isEnabled());
        frmSelectWorldfileGrid worldfile;
        script.Expect(QStringLiteral("frmSelectWorldfileGrid"), [leave](QWidget& shown) {
            QTimer::singleShot(50, &shown, [&shown, leave] { leave(shown); });
            Pick(shown, "ddCountry", QStringLiteral("<Custom>"));
        });
        EXPECT_FALSE(worldfile.ShowModal());
    }
}

} // namespace

TEST(RemoteCoordinates, CanBeGivenUpWhenTheOtherProgramHangs) {
    PrivateBus bus;
    bus.StartService(QStringLiteral("hanging"));
    GiveUpTheWaiting();
}

TEST(RemoteCoordinates, CanBeGivenUpWhenTheBusDoesNotAnswer) {
    const SilentBus bus;
    GiveUpTheWaiting();
}

TEST(RemoteCoordinates, LeaveNoGridForAWorldfileWhenTheNewChoiceGaveNone) {
    PrivateBus bus;
    bus.StartService(QStringLiteral("once"));
    ModalScript script;
    frmSelectWorldfileGrid form;
    script
        .Expect(QStringLiteral("frmSelectWorldfileGrid"),
                [](QWidget& shown) {
                    Pick(shown, "ddCountry", QStringLiteral("<Custom>"));
                    Pick(shown, "ddCountry", QStringLiteral("<Custom>"));
                    Click(shown, "bNext");
                    EXPECT_TRUE(shown.isVisible());
                    Click(shown, "bCancel");
                })
        .ExpectBox(NoCustomSystem);
    EXPECT_FALSE(form.ShowModal());
}

TEST(RemoteCoordinates, GiveStepOneItsGrid) {
    PrivateBus bus;
    bus.StartService(QStringLiteral("good"));
    frmSelectDatumGrid form;
    ModalScript script;
    script.Expect(QStringLiteral("frmSelectDatumGrid"), [](QWidget& shown) {
        Click(shown, "rdShowGrid");
        Click(shown, "bNext");
    });
    EXPECT_TRUE(form.ShowModal());
    EXPECT_EQ(form.Grid(), TestGrid);
    EXPECT_FALSE(form.Datum().has_value());
    EXPECT_TRUE(form.UseGrid());
    EXPECT_EQ(form.Zone(), 0);
}

TEST(RemoteCoordinates, CloseStepOneWithNeitherWhenNobodyAnswers) {
    const PrivateBus bus;
    frmSelectDatumGrid form;
    ModalScript script;
    script.Expect(QStringLiteral("frmSelectDatumGrid"), [](QWidget& shown) { Click(shown, "bNext"); });
    EXPECT_TRUE(form.ShowModal());
    EXPECT_FALSE(form.Datum().has_value());
    EXPECT_FALSE(form.Grid().has_value());
}

TEST(RemoteCoordinates, AreAskedWhenCustomIsChosenForAWorldfile) {
    PrivateBus bus;
    bus.StartService(QStringLiteral("good"));
    const TempFolder folder;
    WriteWholeFile(folder / "a.tfw", "2\n0\n0\n-2\n1000\n5000\n");
    RecordingMap map;
    ModalScript script;
    script.Expect(QStringLiteral("frmSelectWorldfileGrid"), [](QWidget& shown) {
        Pick(shown, "ddCountry", QStringLiteral("<Custom>"));
        Click(shown, "bNext");
    });
    EXPECT_TRUE(clsWorldfileWizard(nullptr).DoSelectDatumGrid(
        map, QString::fromStdString((folder / "a.tfw").string())));
    EXPECT_EQ(map.calls[0], "SetGridIdentifier 0");
    EXPECT_EQ(map.calls[1], "SetZone 0");
    EXPECT_EQ(map.calls[3], "SetMapGrid 1 7 49 -2 0.9996012717 4e+05 -1e+05 0 0");
}
