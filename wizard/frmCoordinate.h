#pragma once

#include "coordinates/CoordinateText.h"
#include "coordinates/QuorvantPosition.h"
#include "wizard/FieldChecks.h"
#include "wizard/WizardForm.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace Ui {
class frmCoordinate;
}
class QLabel;

/// Asks for the coordinate of one reference point. One form serves all points of a wizard run: the degree
/// format and the unit carry over from point to point.
class frmCoordinate : public WizardForm {
    Q_OBJECT

public:
    explicit frmCoordinate(QWidget* parent = nullptr);
    ~frmCoordinate() override;

    // Set before the form is shown.
    std::int16_t CoordinateNumber = 1; ///< 1-based number of the reference point
    std::int16_t ProjectionType = 1;   ///< 1 Cartesian (3 points), 2 Polar (4 points)
    bool UseGrid = false;              ///< easting and northing are asked for, else longitude and latitude
    bool UseLonLat = true;
    std::int16_t Zone = 0; ///< kept for the caller
    bool LockX = false;    ///< longitude or easting is given and cannot be edited
    bool LockY = false;    ///< latitude or northing likewise
    /// Where the reference point is on the screen: the form opens beside it. Nothing: in the middle, as
    /// others.
    std::optional<QPoint> PlaceOnScreen;

    // Set before the form is shown, read once it is confirmed.
    std::int32_t PixelX = 0; ///< unzoomed pixels
    std::int32_t PixelY = 0;
    double Longitude = 0; ///< decimal degrees, east positive
    double Latitude = 0;  ///< decimal degrees, north positive
    double Easting = 0;   ///< metres
    double Northing = 0;  ///< metres

protected:
    void Form_Load() override;
    void bNext_Click() override;
    void showEvent(QShowEvent* event) override;

private:
    void MoveAside();
    void FocusFirstField();
    void ConnectFields();
    void ConnectLists();
    void WatchParts(bool latitude);
    void LoadLonLat();
    void LoadGrid();
    void EnableFields();
    void ShowFormat();
    void RefreshPosition();
    void ShowMeters();

    void rbDecDeg_Click();
    void rbDMS_Click();
    void ddLatHemi_Click();
    void ddLonHemi_Click();
    void ddUnit_Click();
    void StoreParts(bool latitude);
    FieldChecks::Restore PasteLonLat(const QString& text, WrittenAs place);
    FieldChecks::Restore PasteEastNorth(const QString& text);
    double Meters(const QLineEdit& field) const;

    std::unique_ptr<Ui::frmCoordinate> ui_;
    FieldChecks checks_;
    QuorvantPosition position_; ///< the longitude and latitude being edited
    QString degreeFormat_ = QStringLiteral("DecDeg");
    QString unit_; ///< as last confirmed
};
