#pragma once

#include "app/frmMain.h"
#include "tests/app/RecordingLibrary.h"
#include "tests/component/LibraryFixture.h"
#include "tests/support/desktop/Controls.h"
#include "tests/support/desktop/ExpectedTexts.h"
#include "tests/support/desktop/ModalScript.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>

/// Types the path into a file dialog and presses Enter, or Escape for nothing.
void AnswerFileDialog(QWidget& dialog, const std::optional<std::string>& path);

/// The real main window over the real engine, driven by the names of its controls.
class EditorTest : public LibraryTest {
protected:
    /// The window, loaded with the command line and shown.
    frmMain& Start(const QString& commandLine = {}, bool diagnosticMode = false);
    frmMain& Window() { return *window_; }
    const EditorState& State() const { return window_->State(); }
    /// What was asked of every library made since the last call.
    RecordingLibrary::Log TakeCalls() { return std::exchange(calls_, {}); }

    /// What happens in the middle of a library's long operations.
    ProgressProbe& Probe() { return probe_; }

    /// The control of this name in the main window.
    template <typename Kind>
    Kind& Find(const char* name) {
        return Control<Kind>(*window_, name);
    }
    /// The entries of a drop-down list, and which of them is selected.
    QStringList EntriesOf(const char* list);
    int EntryOf(const char* list) { return Find<QComboBox>(list).currentIndex(); }
    std::string TextOf(const char* label) { return Find<QLabel>(label).text().toStdString(); }
    std::string Title() const { return window_->windowTitle().toStdString(); }
    bool IsEnabled(const char* menuEntry) { return Find<QAction>(menuEntry).isEnabled(); }
    /// The names of all menu entries that are enabled, without the menus themselves and separators.
    std::vector<std::string> EnabledEntries();

    /// Opens the menu and clicks the entry, as a person does.
    void Choose(const char* menuEntry);
    /// Picks an entry of a drop-down list from its pop-up by keyboard; also the one that is shown.
    void Pick(const char* list, int entry);

    /// The next window is the file dialog: types the path and presses Enter, or Escape for nothing.
    void ExpectFileDialog(const QString& title, const std::optional<std::string>& path);
    ModalScript& Expecting() { return script_; }
    /// The scaling wizard's first step, given up.
    void ExpectWizardGivenUp();
    int Wizards() const { return wizards_; } ///< so many were given up
    /// Opens the file through the menu; what else comes was to be expected before.
    void OpenByMenu(const std::string& file);

    /// A saved library of scaled maps of the given sizes and of so many icons of 16 × 16 pixels.
    std::string MakeLibrary(const std::string& name, const std::vector<QSize>& maps, int icons = 0,
                            const std::string& key = {});

private:
    ModalScript script_;
    int wizards_ = 0;
    RecordingLibrary::Log calls_;
    ProgressProbe probe_;
    std::unique_ptr<frmMain> window_;
};
