#pragma once

#include "dialogs/DialogForm.h"

#include <memory>

namespace Ui {
class frmPreferences;
}

/// The editor's preferences. One window for the program's life: it is hidden, not unloaded, and its controls
/// keep what was chosen also after Cancel. What the rest of the program reads changes with OK alone.
class frmPreferences : public DialogForm {
    Q_OBJECT

public:
    explicit frmPreferences(QWidget* parent = nullptr);
    ~frmPreferences() override;

    /// The radians flag, which follows the option buttons at once.
    bool RadiansChosen() const { return radiansChosen_; }

    // As of the last OK; before the first, what the window shows when it is new.

    QString TileWidth() const { return accepted_.tileWidth; }   ///< pixels: "64" to "1024"
    QString TileHeight() const { return accepted_.tileHeight; } ///< likewise
    bool Radians() const { return accepted_.radians; }          ///< whether angles are shown in radians
    /// As typed, without check; at first a text that names no folder.
    QString TemporaryFolder() const { return accepted_.temporaryFolder; }

private:
    struct Choices {
        QString tileWidth;
        QString tileHeight;
        bool radians = false;
        QString temporaryFolder;
    };

    void Load() override;
    void SelectUsualSizes();
    Choices Chosen() const;
    void rbDegrees_Click();
    void rbRadians_Click();
    void btnOK_Click();

    std::unique_ptr<Ui::frmPreferences> ui_;
    bool radiansChosen_ = false;
    Choices accepted_;
};
