#include "dialogs/frmOffset.h"

#include "platform/modFields.h"
#include "platform/modMessages.h"
#include "ui_frmOffset.h"

namespace {

// "arount" and "OffsetY" are meant: the text is promised to the letter.
const auto HelpText = QStringLiteral(
    "Offset X is measured in pixels. If set to 0 then the Icon will be horizontally centered arount the "
    "position. If set to a positive value the Icon will be displaced the corresponding number of pixels to "
    "the right, and if negative to the left."
    "\r\n\r\n"
    "OffsetY is measured in pixels. If set to 0 then the Icon will be vertically centered arount the "
    "position. If set to a positive value the Icon will be displaced the corresponding number of pixels "
    "downwards, and if negative upwards.");

/// The field's whole number; without one says so and gives the field the focus.
std::optional<std::int32_t> ReadPixels(QWidget* parent, QLineEdit& field) {
    try {
        return IntegerFrom(field);
    } catch (const NumberError& error) {
        ShowMessage(parent, error.Description());
        field.setFocus();
        field.selectAll();
        return std::nullopt;
    }
}

} // namespace

frmOffset::frmOffset(QWidget* parent) : DialogForm(parent), ui_(std::make_unique<Ui::frmOffset>()) {
    ui_->setupUi(this);
    connect(ui_->bOK, &QPushButton::clicked, this, &frmOffset::bOK_Click);
    ConnectCancel(*ui_->bCancel);
}

frmOffset::~frmOffset() = default;

void frmOffset::SetOffset(std::int32_t x, std::int32_t y) {
    offsetX_ = x;
    offsetY_ = y;
}

void frmOffset::Load() {
    ui_->txtX->setText(NumberText(offsetX_, 0));
    ui_->txtY->setText(NumberText(offsetY_, 0));
    ui_->txtHelp->setPlainText(HelpText);
    ui_->txtX->setFocus();
    ui_->txtX->selectAll();
}

void frmOffset::bOK_Click() {
    const auto x = ReadPixels(this, *ui_->txtX);
    if (!x)
        return;
    const auto y = ReadPixels(this, *ui_->txtY);
    if (!y)
        return;
    SetOffset(*x, *y);
    AcceptOK();
}
