#pragma once

#include "dialogs/DialogForm.h"

#include <cstdint>
#include <functional>
#include <memory>

class AtlavexMap;

namespace Ui {
class frmExport;
}

/// Exports the tiles of a map into a folder. Remembers the output folder and the image format. While the
/// export runs, the dialog takes no input and cannot be closed.
class frmExport : public DialogForm {
    Q_OBJECT
public:
    explicit frmExport(QWidget* parent = nullptr);
    ~frmExport() override;

    // To be set before the dialog is shown.
    std::shared_ptr<AtlavexMap> Map;
    /// Has to call the function it is given, which is the export; whatever its owner has to do around a long
    /// call of the component goes here.
    std::function<void(const std::function<void()>& work)> AroundExport;

    // As remembered.
    QString InitDir;           ///< output folder
    std::int32_t FileType = 0; ///< entry of the list of image formats

    void reject() override;

private:
    void Load() override;
    void ReadSettings();
    void SaveSettings() const;
    void CompleteIdentifier();
    QString MakeTargetFolder() const;
    void ExportTiles(const QString& folder);
    void btnBrowse_Click();
    void btnExport_Click();

    std::unique_ptr<Ui::frmExport> ui_;
    bool exporting_ = false;
};
