#pragma once

#include "tests/app/ShellFixture.h"

#include <QDialog>
#include <QPushButton>

/// The window in the middle of a long operation.
class ProgressTest : public ShellTest {
protected:
    static QDialog* Dialog() {
        for (QWidget* const window : QApplication::topLevelWidgets())
            if (window->objectName() == QStringLiteral("frmProgress"))
                return dynamic_cast<QDialog*>(window);
        return nullptr;
    }
    static std::string DialogText(const char* label) {
        return Control<QLabel>(*Dialog(), label).text().toStdString();
    }
    static QPushButton& CancelButton() { return Control<QPushButton>(*Dialog(), "btnCancel"); }

    void OpenSmallLibrary() {
        Start();
        OpenByMenu(MakeLibrary("a.Atlavex", {{20, 20}}, 1));
        TakeCalls();
    }
    /// Does it once, at the first progress that the next operation reports.
    void AtFirstProgress(const std::function<void()>& act) {
        Probe().progressed = [this, act](float) {
            // The copy is what runs: the function must not end with its own variable.
            const auto now = act;
            Probe().progressed = nullptr;
            now();
        };
    }
    void ExpectRestored() {
        EXPECT_EQ(Dialog(), nullptr);
        EXPECT_TRUE(Window().isEnabled());
        EXPECT_EQ(QApplication::overrideCursor(), nullptr);
        EXPECT_FALSE(State().busy);
    }
};
