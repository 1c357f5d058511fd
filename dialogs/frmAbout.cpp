#include "dialogs/frmAbout.h"

#include "catalogue/modConst.h"
#include "ui_frmAbout.h"

frmAbout::frmAbout(QWidget* parent, AddressOpener open)
    : QDialog(parent), ui_(std::make_unique<Ui::frmAbout>()), open_(std::move(open)) {
    ui_->setupUi(this);
    ui_->lbVersion->setText(QString::fromStdString(ApplicationText()));
    connect(ui_->lURL, &LinkLabel::Activated, this, &frmAbout::lURL_Click);
    connect(ui_->btnOK, &QPushButton::clicked, this, &frmAbout::accept);
}

frmAbout::~frmAbout() = default;

void frmAbout::lURL_Click() {
    ShowHelp(this, open_);
}
