#include "dialogs/DialogForm.h"

#include <QPushButton>
#include <QShowEvent>

void DialogForm::ConnectCancel(const QPushButton& cancel) {
    connect(&cancel, &QPushButton::clicked, this, &DialogForm::btnCancel_Click);
}

void DialogForm::showEvent(QShowEvent* event) {
    // A window that the desktop only brings back is open already.
    if (!event->spontaneous()) {
        ok_ = false;
        Load();
    }
    QDialog::showEvent(event);
}

void DialogForm::AcceptOK() {
    ok_ = true;
    accept();
}

void DialogForm::btnCancel_Click() {
    reject();
}

void DialogForm::reject() {
    ok_ = false;
    QDialog::reject();
}
