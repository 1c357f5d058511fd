#pragma once

#include "dialogs/DialogForm.h"

#include <cstdint>
#include <memory>

namespace Ui {
class frmNewMap;
}

/// Asks for the name, description and tile size of a map to be added; reduced, for those of an icon.
class frmNewMap : public DialogForm {
    Q_OBJECT
public:
    explicit frmNewMap(QWidget* parent = nullptr);
    ~frmNewMap() override;

    void SetName(const QString& name);
    /// Selects these texts in the lists of tile sizes, where they are in them.
    void SetTile(const QString& width, const QString& height);
    /// For an icon: its caption, and no choice of a tile size.
    void ReduceToIcon();

    QString Name() const;
    QString Description() const;
    std::int32_t TileWidth() const;  ///< pixels
    std::int32_t TileHeight() const; ///< pixels

private:
    void Load() override;
    void btnOK_Click();

    std::unique_ptr<Ui::frmNewMap> ui_;
};
