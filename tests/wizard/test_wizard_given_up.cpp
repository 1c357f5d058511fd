#include "tests/support/desktop/Controls.h"
#include "tests/support/desktop/ExpectedTexts.h"
#include "tests/support/desktop/PrivateBus.h"
#include "tests/wizard/WaysOut.h"
#include "tests/wizard/WizardRun.h"

#include <QTimer>

// Wizards in the main window that are cancelled, started anew, refused or overtaken by another command.

namespace {

struct GivenUp {
    const char* projection; ///< null: given up before there is one
    int points;             ///< that are given before
};

class GivingUp : public WizardRun {
protected:
    /// A library with a map that is not scaled, which is all that has to be known of it.
    void OpenUnscaled() {
        const auto library = NewLibrary();
        AddMap(*library, MakeSheet(PixelFormat::Grey, 300, 200), "sheet");
        library->SaveToFile(PathOf("unscaled.Atlavex"), "");
        Start(QString::fromStdString(PathOf("unscaled.Atlavex")));
        ASSERT_EQ(TextOf("lStatus"), NotScaledStatus);
    }
    void OpenScaled() { Start(QString::fromStdString(MakeLibrary("a.Atlavex", {{300, 200}, {310, 210}}))); }

    void ExpectSystem(const char* projection) {
        ExpectDatum(QStringLiteral("International"), QStringLiteral("WGS84"));
        ExpectProjection(projection);
        if (std::string_view(projection) == "rbPolar")
            ExpectInfo();
    }
    /// Starts by a click on the map, which is not scaled.
    void StartByClick(const char* projection) {
        ExpectSystem(projection);
        QTest::mouseClick(&Viewer(), Qt::LeftButton, {}, QPoint(5, 5));
        ASSERT_THAT(TextOf("lHeader"), ::testing::StartsWith("Wizard step 3: "));
    }
    static TypedPoint Corner(int number) {
        static const std::array<TypedPoint, 4> corners{
            TypedPoint{{20, 20}, 10, 60}, TypedPoint{{20, 180}, 10, 50}, TypedPoint{{280, 20}, 20, 60},
            TypedPoint{{280, 180}, 20, 50}};
        return corners.at(static_cast<std::size_t>(number - 1));
    }
    void GivePoint(int number) {
        ExpectPoint(Corner(number));
        ClickPixel(Corner(number).pixel);
    }
    void ExpectNothingHappened() {
        ExpectNoWizard();
        EXPECT_EQ(TextOf("lStatus"), NotScaledStatus);
        EXPECT_FALSE(State().mapScaled);
        EXPECT_FALSE(State().modified);
        EXPECT_FALSE(State().currentMap->IsScaled());
        EXPECT_TRUE(Expecting().IsDone());
    }
};

} // namespace

TEST_F(GivingUp, AtEachStepTheMapStaysAsItWas) {
    OpenUnscaled();
    const std::vector<GivenUp> places{{nullptr, 0},       {"rbCartesian", 0}, {"rbCartesian", 1},
                                      {"rbCartesian", 2}, {"rbPolar", 0},     {"rbPolar", 1},
                                      {"rbPolar", 2},     {"rbPolar", 3}};
    for (const GivenUp& place : places) {
        for (const WayOut leave : WaysOut) {
            SCOPED_TRACE(std::string(place.projection == nullptr ? "step 1" : place.projection) + " " +
                         std::to_string(place.points));
            if (place.projection == nullptr) {
                Expecting().Expect(QStringLiteral("frmSelectDatumGrid"), leave);
                Expecting().ExpectBox(WizardCancelled);
                QTest::mouseClick(&Viewer(), Qt::LeftButton, {}, QPoint(5, 5));
            } else {
                StartByClick(place.projection);
                for (int point = 1; point <= place.points; ++point)
                    GivePoint(point);
                EXPECT_EQ(Viewer().Marks().size(), static_cast<std::size_t>(place.points));
                Expecting().Expect(QStringLiteral("frmCoordinate"), leave);
                Expecting().ExpectBox(WizardCancelled);
                ClickPixel({150, 100});
            }
            ExpectNothingHappened();
        }
    }
}

TEST_F(GivingUp, AtTheProjectionTheMapStaysAsItWas) {
    OpenUnscaled();
    for (const WayOut leave : WaysOut) {
        ExpectDatum(QStringLiteral("International"), QStringLiteral("WGS84"));
        Expecting().Expect(QStringLiteral("frmProjection"), leave);
        Expecting().ExpectBox(WizardCancelled);
        Choose("mBitmapScalingWizard");
        ExpectNothingHappened();
    }
}

TEST_F(GivingUp, AScaledMapKeepsItsScaling) {
    OpenScaled();
    const std::string before = ReadOutAt({100, 100});
    ExpectSystem("rbCartesian");
    Choose("mBitmapScalingWizard");
    EXPECT_EQ(Viewer().Marks().size(), 3U) << "the earlier points";
    Expecting().Expect(QStringLiteral("frmCoordinate"), WaysOut[0]);
    Expecting().ExpectBox(WizardCancelled);
    ClickPixel({30, 30});
    EXPECT_TRUE(State().mapScaled);
    EXPECT_FALSE(State().modified);
    ExpectNoWizard();
    EXPECT_EQ(ReadOutAt({100, 100}), before);
}

TEST_F(GivingUp, StartingAnewForgetsThePointsAndTheFormsSettings) {
    OpenUnscaled();
    StartByClick("rbPolar");
    GivePoint(1);
    GivePoint(2);
    ExpectSystem("rbCartesian");
    Choose("mBitmapScalingWizard");
    EXPECT_EQ(TextOf("lHeader"), PointPrompts[0]);
    EXPECT_TRUE(Viewer().Marks().empty());
    Expecting().Expect(QStringLiteral("frmCoordinate"), [](QWidget& shown) {
        EXPECT_EQ(::Control<QLabel>(shown, "lHeadline").text().toStdString(),
                  "Wizard step 4: Enter scaling coordinate 1 (of 3)");
        EXPECT_EQ(Text(shown, "txtLonDecDeg"), "0");
        EXPECT_TRUE(::Control<QWidget>(shown, "txtLonDecDeg").isEnabled());
        Click(shown, "rbDMS");
        Type(shown, "txtLonDeg", QStringLiteral("1"));
        Click(shown, "bNext");
    });
    ClickPixel({20, 20});
    // Given up at once, without its own run: the one that was running is gone all the same.
    Expecting().Expect(QStringLiteral("frmSelectDatumGrid"), WaysOut[1]);
    Expecting().ExpectBox(WizardCancelled);
    Choose("mBitmapScalingWizard");
    ExpectNothingHappened();
    StartByClick("rbCartesian");
    Expecting().Expect(QStringLiteral("frmCoordinate"), [](QWidget& shown) {
        EXPECT_TRUE(::Control<QRadioButton>(shown, "rbDecDeg").isChecked());
        Click(shown, "bCancel");
    });
    Expecting().ExpectBox(WizardCancelled);
    ClickPixel({20, 20});
    ExpectNothingHappened();
}

TEST_F(GivingUp, EachRefusedInputCanBeMended) {
    OpenUnscaled();
    Expecting().Expect(QStringLiteral("frmSelectDatumGrid"), [](QWidget& shown) {
        ::Pick(shown, "ddCountry", QStringLiteral("International"));
        Click(shown, "rdShowGrid");
        Click(shown, "bNext");
        EXPECT_EQ(shown.focusWidget(), &::Control<QWidget>(shown, "txtZone"));
        Type(shown, "txtZone", QStringLiteral("61"));
        Click(shown, "bNext");
        EXPECT_EQ(::Control<QLineEdit>(shown, "txtZone").selectedText().toStdString(), "61");
        Type(shown, "txtZone", QStringLiteral("60"));
        Click(shown, "bNext");
    });
    for (int time = 0; time < 2; ++time)
        Expecting().ExpectBox(InvalidZone);
    Expecting().Expect(QStringLiteral("frmProjection"), [](QWidget& shown) {
        Click(shown, "bNext");
        Click(shown, "imgCartesian");
        Click(shown, "bNext");
    });
    Expecting().ExpectBox(NoProjection);
    Choose("mBitmapScalingWizard");
    Expecting().Expect(QStringLiteral("frmCoordinate"), [](QWidget& shown) {
        Click(shown, "bNext");
        Type(shown, "txtEasting", QStringLiteral("5oo"));
        Click(shown, "bNext");
        QTest::qWait(1);
        EXPECT_TRUE(shown.isVisible());
        Type(shown, "txtEasting", QStringLiteral("500000"));
        Type(shown, "txtNorthing", QStringLiteral("6000000"));
        Click(shown, "bNext");
    });
    Expecting().ExpectBox(NoPosition);
    Expecting().ExpectBox(QStringLiteral("'5oo' is not a number!"));
    ClickPixel({20, 20});
    EXPECT_EQ(TextOf("lHeader"), PointPrompts[1]);
    EXPECT_TRUE(Expecting().IsDone());
}

TEST_F(GivingUp, APointWhoseFormIsCancelledIsNotKept) {
    OpenUnscaled();
    StartByClick("rbCartesian");
    GivePoint(1);
    Expecting().Expect(QStringLiteral("frmCoordinate"), WaysOut[0]);
    Expecting().ExpectBox(WizardCancelled);
    ClickPixel({150, 100});
    // The next click is a fresh start: at the first step, and then at the first point.
    StartByClick("rbPolar");
    GivePoint(1);
    EXPECT_EQ(TextOf("lHeader"), CornerPrompts[1]);
}

TEST_F(GivingUp, AScalingThatIsInvalidIsSaidAndTheRunEndsAsAlways) {
    const std::vector<std::pair<const char*, std::vector<TypedPoint>>> runs{
        // Three points on a line.
        {"rbCartesian",
         {TypedPoint{{20, 20}, 10, 60}, TypedPoint{{40, 40}, 11, 59}, TypedPoint{{60, 60}, 12, 58}}},
        // Four corners in one point.
        {"rbPolar", std::vector<TypedPoint>(4, TypedPoint{{20, 20}, 10, 60})}};
    for (const auto& [projection, points] : runs) {
        SCOPED_TRACE(projection);
        OpenUnscaled();
        StartByClick(projection);
        for (const TypedPoint& point : points) {
            ExpectPoint(point);
            if (&point == &points.back()) {
                ExpectInvalidScaling();
                Expecting().ExpectBox(ScalingCompleted);
            }
            ClickPixel(point.pixel);
        }
        EXPECT_EQ(TextOf("lStatus"), ScaledStatus);
        EXPECT_TRUE(State().mapScaled);
        EXPECT_TRUE(State().modified);
        ExpectNoWizard();
        EXPECT_FALSE(State().currentMap->IsScaled());
        EXPECT_EQ(ReadOutAt({50, 50}), ScaledStatus) << "there is nothing to read";
    }
}

TEST_F(GivingUp, AScalingThatIsInvalidLeavesTheFormerOneInTheSavedFile) {
    const auto library = NewLibrary();
    const auto sheet = AddMap(*library, MakeSheet(PixelFormat::Grey, 300, 200), "sheet");
    sheet->SetMapDatum(MakeDatum(17).AsNumbers());
    sheet->SetScalingThreePoints({9, 56, 0, 0}, {10, 56, 100, 0}, {9, 55, 0, 100});
    const Georeference former = sheet->MapGeoreference();
    library->SaveToFile(PathOf("ed50.Atlavex"), "");
    Start(QString::fromStdString(PathOf("ed50.Atlavex")));
    ExpectGrid(QStringLiteral("International"), QStringLiteral("UTM North (wgs84)"), QStringLiteral("32"));
    ExpectProjection("rbCartesian");
    Choose("mBitmapScalingWizard");
    for (int number = 1; number <= 3; ++number) {
        ExpectPoint({{20 * number, 20 * number}, 500000.0 + number, 6200000.0 + number},
                    QStringLiteral("meters"));
        if (number == 3) {
            Expecting().Expect(QStringLiteral("MessageBox"), [](QWidget& shown) {
                EXPECT_THAT(dynamic_cast<QMessageBox&>(shown).text().toStdString(),
                            ::testing::StartsWith("Invalid scaling: "));
                QTest::keyClick(&shown, Qt::Key_Return);
            });
            Expecting().ExpectBox(ScalingCompleted);
        }
        ClickPixel({20 * number, 20 * number});
    }
    EXPECT_TRUE(State().mapScaled);
    EXPECT_EQ(State().currentMap->MapGeoreference(), former);
    Choose("mFileSaveAtlavex");
    const auto again = Open(PathOf("ed50.Atlavex"));
    EXPECT_EQ(MapAt(*again, 1)->MapGeoreference(), former);
}

TEST_F(GivingUp, ACustomSystemThatNobodyGivesDoesNotKeepTheFormer) {
    const PrivateBus bus;
    OpenScaled();
    ASSERT_TRUE(State().currentMap->MapGeoreference().datum.has_value());
    Expecting().Expect(QStringLiteral("frmSelectDatumGrid"), [](QWidget& shown) { Click(shown, "bNext"); });
    ExpectProjection("rbCartesian");
    Choose("mBitmapScalingWizard");
    for (int number = 1; number <= 3; ++number) {
        ExpectPoint(Corner(number));
        if (number == 3)
            Expecting().ExpectBox(ScalingCompleted);
        ClickPixel(Corner(number).pixel);
    }
    EXPECT_FALSE(State().currentMap->MapGeoreference().datum.has_value());
    EXPECT_EQ(State().currentMap->MapGeoreference().points.front(), (ReferencePoint{10, 60, 20, 20}));
}

TEST_F(GivingUp, AFailureThatEscapesTheScalingLeavesTheMapAsItWas) {
    OpenUnscaled();
    StartByClick("rbCartesian");
    const std::shared_ptr<AtlavexMap> map = State().currentMap;
    GivePoint(1);
    GivePoint(2);
    Expecting().Expect(QStringLiteral("frmCoordinate"), [this](QWidget& shown) {
        // No command can take the map away while the form is open.
        const_cast<EditorState&>(State()).currentMap.reset();
        Type(shown, "txtLatDecDeg", QStringLiteral("1"));
        Click(shown, "bNext");
    });
    Expecting().ExpectBox(QStringLiteral("There is no map to be scaled."));
    ClickPixel({280, 20});
    ExpectNoWizard();
    EXPECT_EQ(TextOf("lStatus"), NotScaledStatus);
    EXPECT_FALSE(State().mapScaled);
    EXPECT_FALSE(State().modified);
    EXPECT_FALSE(map->IsScaled());
}

TEST_F(GivingUp, ChoosingTheSameMapAgainOrSavingLeavesTheWizardAlone) {
    OpenScaled();
    ExpectSystem("rbCartesian");
    Choose("mBitmapScalingWizard");
    GivePoint(1);
    const std::size_t marks = Viewer().Marks().size();
    EditorTest::Pick("ddMaps", 0);
    Choose("mFileSaveAtlavex");
    EXPECT_EQ(TextOf("lHeader"), PointPrompts[1]);
    EXPECT_EQ(Viewer().Marks().size(), marks);
    GivePoint(2);
    ExpectPoint(Corner(3));
    Expecting().ExpectBox(ScalingCompleted);
    ClickPixel(Corner(3).pixel);
    ExpectNoWizard();
    EXPECT_EQ(ReadOutAt({20, 20}), "Longitude: 10.0000000 E Latitude: 60.0000000 N");
}

TEST_F(GivingUp, ANewMapThatComesToNothingLeavesThePromptStanding) {
    const std::string noImage = PathOf("rubbish.png");
    WriteWholeFile(noImage, "no image");
    OpenScaled();
    ExpectSystem("rbCartesian");
    Choose("mBitmapScalingWizard");
    GivePoint(1);
    const std::string prompt = PointPrompts[1];
    const std::vector<std::function<void()>> ends{
        [this] { ExpectFileDialog(QStringLiteral("Open new bitmap"), std::nullopt); },
        [this, &noImage] {
            ExpectFileDialog(QStringLiteral("Open new bitmap"), noImage);
            Expecting().Expect(QStringLiteral("frmNewMap"), [this](QWidget& shown) {
                EXPECT_EQ(TextOf("lHeader"), "") << "emptied by the command";
                Click(shown, "btnCancel");
            });
        },
        [this, &noImage] {
            ExpectMapAdded(noImage);
            Expecting().Expect(QStringLiteral("MessageBox"),
                               [](QWidget& shown) { QTest::keyClick(&shown, Qt::Key_Return); });
        }};
    for (const auto& expectEnd : ends) {
        expectEnd();
        Choose("mBitmapNew");
        EXPECT_TRUE(Expecting().IsDone());
        EXPECT_EQ(TextOf("lHeader"), prompt);
        EXPECT_EQ(State().objAtlavex->MapCount(), 2);
    }
    GivePoint(2);
    ExpectPoint(Corner(3));
    Expecting().ExpectBox(ScalingCompleted);
    ClickPixel(Corner(3).pixel);
    ExpectNoWizard();
    // Without a wizard there is no prompt that could come back.
    ExpectFileDialog(QStringLiteral("Open new bitmap"), std::nullopt);
    Choose("mBitmapNew");
    EXPECT_EQ(TextOf("lHeader"), "");
}

TEST_F(GivingUp, ByEscapeWhileAClickIsAwaited) {
    OpenUnscaled();
    StartByClick("rbPolar");
    GivePoint(1);
    const auto pressEscape = [this] {
        Window().activateWindow();
        QApplication::processEvents();
        QTest::keyClick(Window().windowHandle(), Qt::Key_Escape);
    };
    Expecting().ExpectBox(WizardCancelled);
    pressEscape();
    ExpectNothingHappened();
    pressEscape(); // nobody waits any more: there is nothing to be left
    ExpectNothingHappened();
    StartByClick("rbCartesian");
    EXPECT_EQ(TextOf("lHeader"), PointPrompts[0]);
}

TEST_F(GivingUp, ShowsACrossOnlyWhileAClickIsAwaited) {
    const auto pointer = [this] { return Viewer().cursor().shape(); };
    OpenUnscaled();
    EXPECT_EQ(pointer(), Qt::ArrowCursor);
    StartByClick("rbCartesian");
    EXPECT_EQ(pointer(), Qt::CrossCursor);
    EXPECT_TRUE(Find<QLabel>("lHeader").font().bold());
    // Dragged in between, the map shows the hand.
    QTest::mousePress(&Viewer(), Qt::MiddleButton, {}, QPoint(40, 40));
    EXPECT_EQ(pointer(), Qt::ClosedHandCursor);
    QTest::mouseRelease(&Viewer(), Qt::MiddleButton, {}, QPoint(40, 40));
    EXPECT_EQ(pointer(), Qt::CrossCursor);
    Expecting().Expect(QStringLiteral("frmCoordinate"), [&pointer](QWidget& shown) {
        EXPECT_EQ(pointer(), Qt::ArrowCursor);
        Type(shown, "txtLatDecDeg", QStringLiteral("1"));
        Click(shown, "bNext");
    });
    ClickPixel({20, 20});
    EXPECT_EQ(pointer(), Qt::CrossCursor);
    Expecting().Expect(QStringLiteral("frmCoordinate"), WaysOut[0]);
    Expecting().ExpectBox(WizardCancelled);
    ClickPixel({30, 30});
    EXPECT_EQ(pointer(), Qt::ArrowCursor);
}

TEST_F(GivingUp, WhileAnotherProgramHangsTheWindowCanBeClosedAfterwards) {
    PrivateBus bus;
    bus.StartService(QStringLiteral("hanging"));
    OpenUnscaled();
    Expecting().Expect(QStringLiteral("frmSelectDatumGrid"), [](QWidget& shown) {
        QTimer::singleShot(50, &shown, [&shown] { Click(shown, "bCancel"); });
        Click(shown, "bNext");
    });
    Expecting().ExpectBox(WizardCancelled);
    Choose("mBitmapScalingWizard");
    ExpectNothingHappened();
    EXPECT_TRUE(Window().close());
    EXPECT_FALSE(Window().isVisible());
}

TEST_F(GivingUp, AnotherCommandThatTakesTheMapAwayEndsTheWizard) {
    const std::string other = MakeLibrary("other.Atlavex", {{100, 100}});
    OpenScaled();
    const std::vector<std::function<void()>> commands{
        [this] { EditorTest::Pick("ddMaps", 1); },
        [this] {
            Expecting().ExpectBox(QStringLiteral("Are you sure you want to delete 'map2' map?"),
                                  QMessageBox::Yes);
            Choose("mBitmapDelete");
        },
        [this] {
            ExpectMapAdded(ImageOf(MakeSheet(PixelFormat::Grey, 90, 80)));
            Expecting().Expect(QStringLiteral("frmSelectDatumGrid"), WaysOut[0]);
            Expecting().ExpectBox(WizardCancelled);
            Choose("mBitmapNew");
            EXPECT_EQ(TextOf("lStatus"), NotScaledStatus);
            Expecting().ExpectBox(QStringLiteral("Are you sure you want to delete 'image4' map?"),
                                  QMessageBox::Yes);
            Choose("mBitmapDelete");
        },
        [this, &other] { OpenByMenu(other); }};
    for (const auto& command : commands) {
        ExpectSystem("rbCartesian");
        Choose("mBitmapScalingWizard");
        ExpectPoint({{30, 30}, 5, 5});
        ClickPixel({30, 30});
        EXPECT_FALSE(Viewer().Marks().empty());
        command();
        ExpectNoWizard();
        EXPECT_THAT(ReadOutAt({10, 10}), ::testing::StartsWith("Longitude: "));
        EXPECT_TRUE(Expecting().IsDone());
    }
}
