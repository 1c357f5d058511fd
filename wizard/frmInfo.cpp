#include "wizard/frmInfo.h"

#include "ui_frmInfo.h"

namespace {

/// A frame does not ask wrapped text how high it becomes: each text gets the room it needs at this width.
constexpr int CharactersInLine = 36;

void MakeRoomForText(QWidget& form) {
    for (QLabel* const label : form.findChildren<QLabel*>()) {
        if (!label->wordWrap())
            continue;
        const int width = label->fontMetrics().averageCharWidth() * CharactersInLine;
        label->setMinimumSize(width, label->heightForWidth(width));
    }
}

} // namespace

frmInfo::frmInfo(QWidget* parent) : WizardForm(parent), ui_(std::make_unique<Ui::frmInfo>()) {
    ui_->setupUi(this);
    ui_->imgCorner1->Show(WizardPicture::Subject::UpperLeft);
    ui_->imgCorner2->Show(WizardPicture::Subject::LowerLeft);
    ui_->imgCorner3->Show(WizardPicture::Subject::UpperRight);
    ui_->imgCorner4->Show(WizardPicture::Subject::LowerRight);
    MakeRoomForText(*this);
    ConnectCommonControls();
}

frmInfo::~frmInfo() = default;

void frmInfo::Form_Load() {
    // Enter goes on; on the link it would open the help.
    ui_->bNext->setFocus();
}

void frmInfo::bNext_Click() {
    Confirm();
}
