#pragma once

#include <QDialog>

#include <memory>

class AtlavexLibrary;

namespace Ui {
class frmProgress;
}

/// How far a long operation of a library has come, and the button that cancels it. Made for one operation,
/// shown modeless, and closed by whoever made it: Escape and the close button do nothing, or Cancel would be
/// lost.
class frmProgress : public QDialog {
    Q_OBJECT

public:
    explicit frmProgress(QWidget* parent = nullptr);
    ~frmProgress() override;

    /// Whether the counter below the percentage is shown; off at first.
    void SetDiagnosticMode(bool on);
    /// The amount that SetProgress counts up to, in any unit.
    void SetMaximum(float total);
    /// Whose operation the button cancels; must outlive the window or be taken back with nullptr.
    void SetLibrary(AtlavexLibrary* library) { library_ = library; }

    /// Shows the amount done. What is painted and whether Cancel is heard is up to the caller's event loop.
    void SetProgress(float done);

    void reject() override;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    int Percent(float done) const;
    void btnCancel_Click();

    std::unique_ptr<Ui::frmProgress> ui_;
    AtlavexLibrary* library_ = nullptr;
    float total_ = 0;
    double barUnits_ = 1; ///< units of the bar, which counts in whole numbers, for one unit of the amount
};
