#pragma once

#include "coordinates/QuorvantDatum.h"
#include "coordinates/QuorvantGrid.h"
#include "wizard/ScaleHandover.h"

#include <QPoint>
#include <QString>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

class frmCoordinate;
class frmSelectDatumGrid;
class QWidget;

/// One run of the scaling wizard: asks for the coordinate system, then for the coordinate of each reference
/// point that was clicked, and hands everything to the map. Whoever owns it shows the prompts and passes on
/// the clicks; when a step is cancelled, which the wizard tells the user, it has to be thrown away.
class clsScalingWizard {
public:
    /// Dialogs and messages stand before `parent`, which must outlive the wizard.
    explicit clsScalingWizard(QWidget* parent);
    ~clsScalingWizard();

    /// True once the last reference point was confirmed.
    bool Finished() const { return finished_; }
    /// 1-based number of the reference point that the next click defines; 0 before there is one.
    std::int16_t CoordinateIndex() const { return coordinateIndex_; }
    /// 1 Cartesian, 2 Polar; 0 before it is chosen.
    std::int16_t Projection() const { return projection_; }
    /// Asks for datum or grid and for the projection. False: cancelled.
    bool DoSelectDatumGrid();
    /// Asks for the coordinate of the reference point at this unzoomed pixel, which `onScreen`, in the
    /// screen's coordinates, the form leaves in sight. False: cancelled.
    bool DoDefineCoordinate(std::int32_t pixelX, std::int32_t pixelY,
                            const std::optional<QPoint>& onScreen = std::nullopt);
    /// Hands everything to the map. A failure is shown to the user and goes no further; only that there is no
    /// map is thrown (NoSuchMap).
    void ScaleMap(AtlavexMap* map);

    /// What the map's header says while the wizard waits for the next click: "Wizard step 3: Click on a known
    /// coordinate"; nothing for a projection that there is not.
    QString Prompt() const;
    /// The reference points confirmed so far.
    std::vector<ReferencePoint> GivenPoints() const;

private:
    void KeepSystem(const frmSelectDatumGrid& form);
    void PrepareCoordinateForm();
    void HandPointToForm(std::int32_t pixelX, std::int32_t pixelY);
    void FillInCorner();
    void KeepPoint();

    QWidget* parent_;
    bool finished_ = false;
    std::int16_t coordinateIndex_ = 0;
    std::int16_t projection_ = 0;
    bool useLonLat_ = false;
    bool useGrid_ = false;
    std::int16_t gridIdentifier_ = 0;
    std::int16_t zone_ = 0;
    WizardPoints points_;
    std::int16_t coordinateCount_ = 0;
    std::optional<QuorvantDatum> datum_; ///< at most one of datum and grid
    std::optional<QuorvantGrid> grid_;
    std::unique_ptr<frmCoordinate> coordinateForm_;
};
