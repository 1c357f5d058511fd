#pragma once

#include "coordinates/QuorvantDatum.h"
#include "coordinates/QuorvantGrid.h"
#include "wizard/GridChooser.h"
#include "wizard/WizardForm.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace Ui {
class frmSelectDatumGrid;
}

/// Step 1 of the scaling wizard: in which coordinate system the reference points will be given.
class frmSelectDatumGrid : public WizardForm {
    Q_OBJECT

public:
    explicit frmSelectDatumGrid(QWidget* parent = nullptr);
    ~frmSelectDatumGrid() override;

    // Set once the form is confirmed.
    bool UseLonLat() const { return useLonLat_; }
    bool UseGrid() const { return useGrid_; }
    std::int16_t GridIdentifier() const { return gridIdentifier_; } ///< 0 for a datum or a custom grid
    /// The typed zone, the state-plane code as a number, or 0.
    std::int16_t Zone() const { return zone_; }
    /// At most one of the two is set; none when another program was to give it and gave nothing.
    const std::optional<QuorvantDatum>& Datum() const { return datum_; }
    const std::optional<QuorvantGrid>& Grid() const { return grid_; }

protected:
    void Form_Load() override;
    void bNext_Click() override;

private:
    void ddCountry_Click();
    void ddGrid_Click();
    void rbShowDatum_Click();
    void rdShowGrid_Click();
    bool IsCustom() const;
    void ShowFrames();

    bool AskForCustom();
    bool ReadDatum();
    bool ReadGrid();

    std::unique_ptr<Ui::frmSelectDatumGrid> ui_;
    std::optional<GridChooser> chooser_;
    bool useLonLat_ = false;
    bool useGrid_ = false;
    std::int16_t gridIdentifier_ = 0;
    std::int16_t zone_ = 0;
    std::optional<QuorvantDatum> datum_;
    std::optional<QuorvantGrid> grid_;
};
