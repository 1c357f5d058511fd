#pragma once

#include "app/EditorWindow.h"

#include <QString>

#include <cstdint>
#include <optional>

class WizardCommands;

/// What the File menu does with whole library files. A component's error leaves every operation as a
/// ComponentError, with pointer and window restored; what is said of the state holds then, too.
class LibraryCommands {
public:
    LibraryCommands(const EditorParts& parts, WizardCommands& wizard);

    /// Asks to save what is unsaved, then empties the display, whatever the answer; whether the caller may go
    /// on.
    bool AskToSave();
    void NewLibrary();
    void OpenLibrary();
    /// The same for a file that was named otherwise than in the open dialog.
    void OpenFile(const QString& fileName);
    /// Takes a fresh library and loads the file into it, asking for the key of a sealed one.
    void LoadLibrary(const QString& fileName);
    /// Whether it was saved.
    bool SaveLibrary();
    bool SaveLibraryAs();
    void MergeLibrary();

private:
    struct Counts {
        std::int32_t maps = 0;
        std::int32_t icons = 0;
        bool operator==(const Counts&) const = default;
    };

    /// What the lists show when a merge begins.
    struct ListsBefore {
        Counts counts;
        int map = -1;  ///< the entry that is selected
        int icon = -1; ///< likewise
    };

    Counts CountEntries() const;
    /// Makes no map and no icon current and empties both views, lbSize and lHeader; a running scaling wizard
    /// is given up.
    void ClearDisplay();
    void StartEmptyLibrary();
    /// The key for the file, empty for a plain one; nothing when the user gave none.
    std::optional<QString> AskForKey(bool sealed);
    void ShowLoadedFile(const QString& fileName);
    bool MayBeSaved();
    /// FileChanged when the file that is open has gone: only Save As makes another.
    void RequireFile() const;
    void SaveTo(const QString& fileName);
    void SaveWithAdvice(const QString& fileName);
    void SelectAgain(int map, int icon);
    void ReportMerge(const ListsBefore& lists);

    EditorState& state_;
    EditorWindow& window_;
    MapList& maps_;
    IconList& icons_;
    MapZoom& zoom_;
    TextLines& lines_;
    StatusLine& status_;
    WizardCommands& wizard_;
};
