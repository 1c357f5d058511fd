#pragma once

#include "tests/app/EditorFixture.h"
#include "view/KarvelViewer.h"

#include <QRadioButton>
#include <QScrollBar>
#include <QSlider>

/// A coordinate as it is typed into the form of a reference point.
struct TypedPoint {
    QPoint pixel; ///< where the map is clicked
    double x = 0; ///< longitude, or easting in the unit
    double y = 0; ///< latitude, or northing in the unit
};

/// The wizards in the real main window, from an image file to a scaled map. The mouse goes where the test's
/// own arithmetic says that a pixel of the map is.
class WizardRun : public EditorTest {
protected:
    /// The window as small as it gets, so that maps have to be scrolled.
    void StartSmall();
    /// "New map" up to what follows its settings, which was to be expected before.
    void ExpectMapAdded(const std::string& image);

    // The dialogs of the scaling wizard.
    void ExpectDatum(const QString& country, const QString& datum);
    /// `zone` is typed or picked, if the grid has one.
    void ExpectGrid(const QString& country, const QString& grid, const QString& zone = {});
    void ExpectProjection(const char* option);
    /// The page that tells how to click corners.
    void ExpectInfo();
    /// Picks the unit and types both values where they are not locked; an empty unit is for degrees. The form
    /// must show the pixel.
    void ExpectPoint(const TypedPoint& point, const QString& unit = {});

    /// The box of a scaling that the map refuses, before anything has changed.
    void ExpectInvalidScaling();

    /// Scrolls to the pixel and clicks it.
    void ClickPixel(const QPoint& pixel);

    // The view.
    KarvelViewer& Viewer() { return Find<KarvelViewer>("viewerMap"); }
    void SetSlider(int position) { Find<QSlider>("sldZoom").setValue(position); }
    void ScrollTo(const QPoint& pixel);
    void ScrollToFarCorner();
    /// Where the viewer shows the centre of a pixel of the map.
    QPoint PlaceOf(const QPoint& pixel);
    bool IsInSight(const QPoint& pixel);
    /// The status line with the mouse over the pixel; scrolls to it when it is not in sight.
    std::string ReadOutAt(const QPoint& pixel);

    /// Saves under the name, and opens it again.
    void SaveAndReopen(const std::string& name);

    void ExpectNoWizard();

private:
    double Zoom() { return std::exp(Find<QSlider>("sldZoom").value() / 10.0); }
    int Unit(int mapSize, int viewerSize);
    QPoint Units();
};
