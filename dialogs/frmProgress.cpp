#include "dialogs/frmProgress.h"

#include "base/CheckedNumbers.h"
#include "component/AtlavexLibrary.h"
#include "platform/modFields.h"
#include "ui_frmProgress.h"

#include <QCloseEvent>

#include <algorithm>
#include <limits>

namespace {

/// Totals in this range are shown by the bar as they are; others as fractions of the upper end.
constexpr float SmallestBar = 100;
constexpr float LargestBar = 1e9F;

} // namespace

frmProgress::frmProgress(QWidget* parent) : QDialog(parent), ui_(std::make_unique<Ui::frmProgress>()) {
    // The title bar has no close button, as it could do nothing.
    setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint);
    ui_->setupUi(this);
    SetDiagnosticMode(false);
    connect(ui_->btnCancel, &QPushButton::clicked, this, &frmProgress::btnCancel_Click);
}

frmProgress::~frmProgress() = default;

void frmProgress::SetDiagnosticMode(bool on) {
    ui_->lbDebugProgress->setVisible(on);
}

void frmProgress::SetMaximum(float total) {
    total_ = total;
    // Written so that NaN counts as nothing to do; a bar from 0 to 0 would move to and fro by itself.
    const bool countable = total > 0 && total <= std::numeric_limits<float>::max();
    barUnits_ =
        !countable || (total >= SmallestBar && total <= LargestBar) ? 1.0 : LargestBar / double{total};
    ui_->ProgressBar1->setRange(0, countable ? CheckedRound<std::int32_t>(total * barUnits_) : 1);
    ui_->ProgressBar1->setValue(0);
}

void frmProgress::SetProgress(float done) {
    const QString counter =
        NumberText(double{done}, 2) + QStringLiteral(" / ") + NumberText(double{total_}, 2);
    ui_->lbDebugProgress->setText(counter);
    ui_->lbProgress->setText(QStringLiteral("Loading...%1% complete.").arg(Percent(done)));
    const double end = ui_->ProgressBar1->maximum();
    ui_->ProgressBar1->setValue(static_cast<int>(std::clamp(RoundHalfEven(done * barUnits_), 0.0, end)));
}

int frmProgress::Percent(float done) const {
    if (!(total_ > 0))
        return 0;
    return CheckedRound<std::int32_t>(RoundHalfEven(double{done}) / double{total_} * 100.0);
}

void frmProgress::btnCancel_Click() {
    // First the button: the operation may let another press through before it ends.
    ui_->btnCancel->setEnabled(false);
    if (library_ != nullptr)
        library_->CancelOperation();
}

void frmProgress::reject() {}

void frmProgress::closeEvent(QCloseEvent* event) {
    event->ignore();
}
