#pragma once

#include "coordinates/QuorvantGrid.h"
#include "wizard/GridChooser.h"
#include "wizard/WizardForm.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace Ui {
class frmSelectWorldfileGrid;
}

/// The only step of the worldfile wizard: in which grid the worldfile's numbers are.
class frmSelectWorldfileGrid : public WizardForm {
    Q_OBJECT

public:
    explicit frmSelectWorldfileGrid(QWidget* parent = nullptr);
    ~frmSelectWorldfileGrid() override;

    // Set once the form is confirmed.
    QString Country() const { return country_; }
    std::int16_t GridIdentifier() const { return identifier_; } ///< 0 for a custom grid
    /// The typed zone, the state-plane code as a number, or 0.
    std::int16_t Zone() const { return zone_; }
    /// The chosen grid.
    const QuorvantGrid& Grid() const { return grid_.value(); }

protected:
    void Form_Load() override;
    void bNext_Click() override;

private:
    void ddCountry_Click();
    void ddCountry_Changed();
    void ddGrid_Click();
    bool IsCustom() const;
    bool ReadCustomGrid();
    bool ReadListedGrid();

    std::unique_ptr<Ui::frmSelectWorldfileGrid> ui_;
    std::optional<GridChooser> chooser_;
    std::optional<QuorvantGrid> customGrid_;
    QString country_;
    std::int16_t identifier_ = 0;
    std::int16_t zone_ = 0;
    std::optional<QuorvantGrid> grid_;
};
