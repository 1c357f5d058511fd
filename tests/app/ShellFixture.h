#pragma once

#include "tests/app/EditorFixture.h"
#include "tests/support/desktop/Controls.h"
#include "tests/support/desktop/ExpectedTexts.h"
#include "view/KarvelViewer.h"

#include <QTabBar>
#include <QTabWidget>

#include <algorithm>

/// The main window with what the tests of its files, lists and views share.
class ShellTest : public EditorTest {
protected:
    /// A saved library whose maps of 50 × 40 pixels are scaled or not, in this order.
    std::string MakeMixedLibrary(const std::string& name, const std::vector<bool>& scaled) {
        const std::string file = MakeLibrary(name, std::vector<QSize>(scaled.size(), QSize(50, 40)));
        const auto library = Open(file);
        const auto mixed = NewLibrary();
        for (std::size_t i = 0; i < scaled.size(); ++i) {
            const auto map =
                AddMap(*mixed, MakeSheet(PixelFormat::Rgb, 50, 40), "map" + std::to_string(i + 1));
            map->SetIdentifier("11111111-0000-0000-0000-00000000000" + std::to_string(i + 1));
            if (scaled[i])
                map->SetScalingThreePoints({8, 56, 0, 0}, {9, 56, 100, 0}, {8, 55, 0, 100});
        }
        mixed->SaveToFile(file, {});
        return file;
    }

    /// Moves the current icon by the Offset dialog, which leaves something to save.
    void Edit(const QString& offset = QStringLiteral("5")) {
        Expecting().Expect(QStringLiteral("frmOffset"), [offset](QWidget& window) {
            TypeInto(window, "txtX", offset);
            Click(window, "bOK");
        });
        Choose("mIconsOffset");
        ASSERT_TRUE(State().modified);
    }
    /// Adds an icon, to the open library or to a new one, which leaves something to save.
    void AddIconByMenu() {
        ExpectFileDialog(QStringLiteral("Open new icon"), ImageOf(MakeSheet(PixelFormat::Rgba, 9, 9)));
        Expecting().Expect(QStringLiteral("frmNewMap"), [](QWidget& window) { Click(window, "btnOK"); });
        Choose("mIconsNewIcon");
        ASSERT_TRUE(State().modified);
    }
    void ExpectSaveQuestion(QMessageBox::StandardButton press) { Expecting().ExpectBox(SaveQuestion, press); }
    void ExpectSaveDialog(const std::optional<std::string>& path) {
        ExpectFileDialog(QStringLiteral("Save Atlavex As"), path);
    }
    void ExpectMergeDialog(const std::optional<std::string>& path) {
        ExpectFileDialog(QStringLiteral("Add Atlavex"), path);
    }

    /// Gives the control the keyboard, once the window has it back from a dialog.
    void Focus(const char* name) {
        Window().activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&Window()));
        Find<QWidget>(name).setFocus();
        EXPECT_TRUE(Find<QWidget>(name).hasFocus()) << name;
    }
    /// Presses a shortcut where the focus is.
    void PressShortcut(Qt::Key key) {
        Window().activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&Window()));
        QTest::keyClick(&Window(), key, Qt::ControlModifier);
    }

    QTabBar& Tabs() { return *Find<QTabWidget>("tabAtlavex").tabBar(); }
    void ClickTab(int page) { QTest::mouseClick(&Tabs(), Qt::LeftButton, {}, Tabs().tabRect(page).center()); }

    /// The views, lbSize and lHeader show nothing, and no map and no icon is current.
    void ExpectNothingShown() {
        EXPECT_EQ(State().currentMap, nullptr);
        EXPECT_EQ(State().currentIcon, nullptr);
        EXPECT_EQ(Find<KarvelViewer>("viewerMap").Image(), nullptr);
        EXPECT_EQ(Find<KarvelViewer>("viewerIcon").Image(), nullptr);
        EXPECT_EQ(TextOf("lbSize"), "");
        EXPECT_EQ(TextOf("lHeader"), "");
        for (const char* const entry : {"mBitmapDelete", "mIconsOffset", "mnuAtlavexProperties"})
            EXPECT_FALSE(IsEnabled(entry)) << entry;
    }

    /// How often this was asked of the libraries since the last TakeCalls.
    static std::ptrdiff_t CountOf(const RecordingLibrary::Log& calls, const std::string& call) {
        return std::count(calls.begin(), calls.end(), call);
    }
};
