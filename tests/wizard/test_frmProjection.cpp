#include "tests/support/desktop/Controls.h"
#include "tests/support/desktop/ExpectedTexts.h"
#include "tests/support/desktop/ModalScript.h"
#include "wizard/frmInfo.h"
#include "wizard/frmProjection.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QRadioButton>

namespace {

const std::array<std::vector<std::string>, 4> CornerTexts{{
    {"Select a coordinate to the upper left"},
    {"Select a coordinate to the lower left",
     "This coordinate must have the same longitude (or easting) as Coordinate 1"},
    {"Select a coordinate to the upper right",
     "This coordinate must have the same latitude (or northing) as Coordinate 1"},
    {"Select a coordinate to the lower right",
     "This coordinate must have the same latitude (or northing) as Coordinate 2",
     "And it must have the same longitude (or easting) as Coordinate 3"},
}};

/// The texts of a frame from its top down.
std::vector<std::string> TextsDownIn(QWidget& frame) {
    std::map<int, std::string> byHeight;
    for (const auto* const label : frame.findChildren<QLabel*>())
        byHeight[label->mapTo(&frame, QPoint(0, 0)).y()] = label->text().toStdString();
    std::vector<std::string> texts;
    for (const auto& [y, text] : byHeight)
        texts.push_back(text);
    return texts;
}

/// Each shows something, and something else than the others.
void ExpectPictures(QWidget& shown, const std::vector<const char*>& names) {
    std::vector<QImage> pictures;
    for (const char* const name : names) {
        const QImage picture = Control<QWidget>(shown, name).grab().toImage();
        QImage plain = picture;
        plain.fill(picture.pixelColor(0, 0));
        EXPECT_NE(picture, plain) << name;
        EXPECT_EQ(std::find(pictures.begin(), pictures.end(), picture), pictures.end()) << name;
        pictures.push_back(picture);
    }
}

} // namespace

TEST(ProjectionForm, OpensWithNothingChosen) {
    frmProjection form;
    ModalScript script;
    script.Expect(QStringLiteral("frmProjection"), [](QWidget& shown) {
        EXPECT_EQ(shown.windowTitle().toStdString(), "Wizard Step 2: Projection");
        EXPECT_EQ(Control<QLabel>(shown, "Label3").text().toStdString(), "Wizard step 2: Projection");
        EXPECT_EQ(Control<QGroupBox>(shown, "Frame1").title().toStdString(), "I. Projection");
        EXPECT_EQ(Control<QRadioButton>(shown, "rbCartesian").text().toStdString(), "Linear");
        EXPECT_EQ(Control<QRadioButton>(shown, "rbPolar").text().toStdString(), "Polar");
        EXPECT_FALSE(Control<QRadioButton>(shown, "rbCartesian").isChecked());
        EXPECT_FALSE(Control<QRadioButton>(shown, "rbPolar").isChecked());
        ExpectPictures(shown, {"imgCartesian", "imgPolar"});
        EXPECT_EQ(
            Control<QPlainTextEdit>(shown, "txtHelp").toPlainText().toStdString(),
            "In this step you select how the longitude / latitude or easting / northing lines are drawn on "
            "the map. The most common case is Cartesian\"");
        Click(shown, "bCancel");
    });
    EXPECT_FALSE(form.ShowModal());
}

TEST(ProjectionForm, GivesOneForLinearAndTwoForPolar) {
    const std::vector<std::pair<const char*, int>> cases{
        {"rbCartesian", 1}, {"rbPolar", 2}, {"imgCartesian", 1}, {"imgPolar", 2}};
    for (const auto& [control, projection] : cases) {
        frmProjection form;
        ModalScript script;
        script.Expect(QStringLiteral("frmProjection"), [control = control](QWidget& shown) {
            Click(shown, control);
            Click(shown, "bNext");
        });
        EXPECT_TRUE(form.ShowModal()) << control;
        EXPECT_EQ(form.Projection(), projection) << control;
    }
}

TEST(ProjectionForm, IsWorkedByTheKeyboardAlone) {
    frmProjection form;
    ModalScript script;
    script.Expect(QStringLiteral("frmProjection"), [](QWidget& shown) {
        EXPECT_TRUE(QTest::qWaitForWindowActive(&shown));
        EXPECT_EQ(shown.focusWidget()->objectName().toStdString(), "rbCartesian");
        QTest::keyClick(shown.focusWidget(), Qt::Key_Space);
        EXPECT_TRUE(Control<QRadioButton>(shown, "rbCartesian").isChecked());
        QTest::keyClick(shown.focusWidget(), Qt::Key_Right);
        EXPECT_TRUE(Control<QRadioButton>(shown, "rbPolar").isChecked());
        QTest::keyClick(shown.focusWidget(), Qt::Key_Return);
    });
    EXPECT_TRUE(form.ShowModal());
    EXPECT_EQ(form.Projection(), 2);
}

TEST(ProjectionForm, StaysUntilAProjectionIsChosen) {
    frmProjection form;
    ModalScript script;
    script
        .Expect(QStringLiteral("frmProjection"),
                [](QWidget& shown) {
                    Click(shown, "bNext");
                    EXPECT_TRUE(shown.isVisible());
                    QTest::keyClick(&shown, Qt::Key_Escape);
                })
        .ExpectBox(NoProjection);
    EXPECT_FALSE(form.ShowModal());
}

TEST(InfoForm, TellsHowToClickTheCorners) {
    frmInfo form;
    ModalScript script;
    script.Expect(QStringLiteral("frmInfo"), [](QWidget& shown) {
        EXPECT_EQ(shown.windowTitle().toStdString(), "Wizard: How to click");
        EXPECT_EQ(Control<QLabel>(shown, "Label1").text().toStdString(),
                  "After this dialog you will be asked to calibrate the map using 4 coordinates");
        for (int number = 1; number <= 4; ++number) {
            auto& frame = Control<QGroupBox>(shown, ("Frame" + std::to_string(number)).c_str());
            EXPECT_EQ(frame.title().toStdString(), "Coordinate " + std::to_string(number));
            EXPECT_EQ(TextsDownIn(frame), CornerTexts.at(static_cast<std::size_t>(number - 1)));
        }
        ExpectPictures(shown, {"imgCorner1", "imgCorner2", "imgCorner3", "imgCorner4"});
        Click(shown, "bNext");
    });
    form.ShowModal();
}
