#pragma once

#include "tests/app/EditorFixture.h"
#include "tests/support/desktop/Controls.h"
#include "tests/support/desktop/ExpectedTexts.h"

/// The main window with what the tests of maps and icons share.
class EditingTest : public EditorTest {
protected:
    /// A grey image of this size under this name in the test's folder.
    std::string ImageNamed(const std::string& name, std::int32_t width = 40, std::int32_t height = 30) {
        std::filesystem::rename(ImageOf(MakeSheet(PixelFormat::Grey, width, height)), PathOf(name));
        return PathOf(name);
    }

    void ExpectMapFile(const std::optional<std::string>& path) {
        ExpectFileDialog(QStringLiteral("Open new bitmap"), path);
    }
    void ExpectIconFile(const std::optional<std::string>& path) {
        ExpectFileDialog(QStringLiteral("Open new icon"), path);
    }
    /// The settings of a new map or icon; `act` has to end the dialog.
    void ExpectSettings(std::function<void(QWidget&)> act) {
        Expecting().Expect(QStringLiteral("frmNewMap"), std::move(act));
    }
    void ExpectSettingsAccepted() {
        ExpectSettings([](QWidget& window) { Click(window, "btnOK"); });
    }

    /// Adds the image through the menu with what is proposed, and gives up the wizard.
    void AddMapByMenu(const std::string& image) {
        ExpectMapFile(image);
        ExpectSettingsAccepted();
        ExpectWizardGivenUp();
        Choose("mBitmapNew");
    }
    void AddIconByMenu(const std::string& image) {
        ExpectIconFile(image);
        ExpectSettingsAccepted();
        Choose("mIconsNewIcon");
    }

    /// Presses Cancel in the progress window, as soon as there is one.
    static void CancelProgress() {
        for (const QWidget* const window : QApplication::topLevelWidgets())
            if (window->objectName() == QStringLiteral("frmProgress") && window->isVisible())
                return Click(*window, "btnCancel");
        QTimer::singleShot(0, &CancelProgress);
    }

    /// Gives the window the keys: a menu that has just closed leaves them with the main window for a while.
    static void Activate(QWidget& window) {
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitFor([&window] { return window.isActiveWindow(); }));
    }

    int Page() { return Find<QTabWidget>("tabAtlavex").currentIndex(); }
};
