#pragma once

#include "tests/app/EditorFixture.h"
#include "tests/support/desktop/Controls.h"

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
    static QString WizardCanceled() {
        return QStringLiteral(
            "Wizard canceled! Select 'Bitmap -> Scaling Wizard...' from menu to restart the Wizard.");
    }
    /// The scaling wizard's first step, given up.
    void ExpectWizardGivenUp() {
        Expecting().Expect(QStringLiteral("frmSelectDatumGrid"), [this](QWidget& window) {
            ++wizards_;
            QTest::keyClick(&window, Qt::Key_Escape);
        });
        Expecting().ExpectBox(WizardCanceled());
    }
    int Wizards() const { return wizards_; }

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

    /// Gives the window the keys: a menu that has just closed leaves them with the main window for a while.
    static void Activate(QWidget& window) {
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitFor([&window] { return window.isActiveWindow(); }));
    }

    QStringList EntriesOf(const char* list) {
        QStringList entries;
        for (int position = 0; position < Find<QComboBox>(list).count(); ++position)
            entries.append(Find<QComboBox>(list).itemText(position));
        return entries;
    }
    int EntryOf(const char* list) { return Find<QComboBox>(list).currentIndex(); }
    int Page() { return Find<QTabWidget>("tabAtlavex").currentIndex(); }

private:
    int wizards_ = 0;
};
