#include "platform/LinkLabel.h"
#include "tests/support/desktop/Controls.h"
#include "tests/support/desktop/ExpectedTexts.h"
#include "tests/support/desktop/FakeBrowser.h"
#include "tests/support/desktop/ModalScript.h"
#include "wizard/frmCoordinate.h"
#include "wizard/frmInfo.h"
#include "wizard/frmProjection.h"
#include "wizard/frmSelectDatumGrid.h"
#include "wizard/frmSelectWorldfileGrid.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>

// What all forms of the wizards have in common.

namespace {

struct FormCase {
    const char* name;
    std::unique_ptr<WizardForm> (*make)();
    /// The controls that Tab reaches, from the one that has the focus at first.
    std::vector<std::string> tabOrder;
};

template <typename Form>
std::unique_ptr<WizardForm> Make() {
    return std::make_unique<Form>();
}

void PrintTo(const FormCase& form, std::ostream* out) {
    *out << form.name;
}

class WizardForms : public ::testing::TestWithParam<FormCase> {
protected:
    /// Shows the form once; whether it was confirmed.
    bool Show(const std::function<void(QWidget&)>& act) {
        script.Expect(QString::fromLatin1(GetParam().name), act);
        return GetParam().make()->ShowModal();
    }

    ModalScript script;
};

std::vector<std::string> TabOrderOf(QWidget& shown) {
    EXPECT_TRUE(QTest::qWaitForWindowActive(&shown));
    std::vector<std::string> names;
    for (;;) {
        const std::string name = shown.focusWidget()->objectName().toStdString();
        if (std::find(names.begin(), names.end(), name) != names.end())
            return names;
        names.push_back(name);
        QTest::keyClick(shown.focusWidget(), Qt::Key_Tab);
    }
}

} // namespace

TEST_P(WizardForms, HaveALinkToTheHelp) {
    const NoBrowser noBrowser;
    const auto guide = HelpNotStarted;
    script.Expect(QString::fromLatin1(GetParam().name), [](QWidget& shown) {
        EXPECT_EQ(Control<LinkLabel>(shown, "lURL").text().toStdString(), "Help");
        Click(shown, "lURL");
        EXPECT_TRUE(shown.isVisible());
        QTest::keyClick(&shown, Qt::Key_Escape);
    });
    script.ExpectBox(guide);
    EXPECT_FALSE(GetParam().make()->ShowModal());
    EXPECT_TRUE(script.IsDone());
}

TEST_P(WizardForms, AreLeftUnconfirmedByEscapeAndTheCloseButton) {
    EXPECT_FALSE(Show([](QWidget& shown) { QTest::keyClick(&shown, Qt::Key_Escape); }));
    EXPECT_FALSE(Show([](QWidget& shown) { shown.close(); }));
}

TEST_P(WizardForms, HaveNextAsTheirOnlyDefaultButton) {
    Show([](QWidget& shown) {
        for (const QPushButton* const button : shown.findChildren<QPushButton*>()) {
            EXPECT_FALSE(button->autoDefault()) << button->objectName().toStdString();
            EXPECT_EQ(button->isDefault(), button->objectName() == QStringLiteral("bNext"));
        }
        EXPECT_EQ(Control<QPushButton>(shown, "bNext").text().toStdString(), "Next ->");
        QTest::keyClick(&shown, Qt::Key_Escape);
    });
}

TEST_P(WizardForms, ShowPlainTextsAndReadOnlyHelp) {
    Show([](QWidget& shown) {
        for (const QLabel* const label : shown.findChildren<QLabel*>())
            EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->objectName().toStdString();
        if (const auto* const help = shown.findChild<QPlainTextEdit*>(QStringLiteral("txtHelp"))) {
            EXPECT_TRUE(help->isReadOnly());
            EXPECT_EQ(help->font().family().toStdString(), "Courier New");
        }
        QTest::keyClick(&shown, Qt::Key_Escape);
    });
}

TEST_P(WizardForms, AreWorkedByTheTabKeyInTheirOrder) {
    Show([](QWidget& shown) {
        EXPECT_EQ(TabOrderOf(shown), GetParam().tabOrder);
        QTest::keyClick(&shown, Qt::Key_Escape);
    });
}

INSTANTIATE_TEST_SUITE_P(Each, WizardForms,
                         ::testing::Values(FormCase{"frmSelectDatumGrid",
                                                    Make<frmSelectDatumGrid>,
                                                    {"ddCountry", "rbShowDatum", "bNext", "bCancel",
                                                     "txtHelp", "lURL"}},
                                           FormCase{"frmSelectWorldfileGrid",
                                                    Make<frmSelectWorldfileGrid>,
                                                    {"ddCountry", "bNext", "bCancel", "txtHelp", "lURL"}},
                                           FormCase{"frmProjection",
                                                    Make<frmProjection>,
                                                    {"rbCartesian", "bNext", "bCancel", "txtHelp", "lURL"}},
                                           FormCase{"frmInfo", Make<frmInfo>, {"bNext", "lURL"}},
                                           FormCase{"frmCoordinate",
                                                    Make<frmCoordinate>,
                                                    {"txtLatDecDeg", "txtLonDecDeg", "bNext", "bCancel",
                                                     "txtHelp", "lURL", "txtX", "txtY", "rbDecDeg"}}),
                         [](const auto& form) { return std::string(form.param.name); });
