#include "wizard/WizardForm.h"

#include "base/ComponentError.h"
#include "platform/LinkLabel.h"
#include "platform/modFields.h"
#include "platform/modHelp.h"
#include "platform/modMessages.h"

#include <QComboBox>
#include <QFont>
#include <QPlainTextEdit>
#include <QPushButton>

WizardForm::WizardForm(QWidget* parent) : QDialog(parent) {}

bool WizardForm::ShowModal() {
    confirmed_ = false;
    Form_Load();
    exec();
    return confirmed_;
}

void WizardForm::Confirm() {
    confirmed_ = true;
    accept();
}

void WizardForm::Next() {
    try {
        bNext_Click();
    } catch (const ComponentError& error) {
        ShowMessage(this, QString::fromStdString(error.Description()));
    }
}

void WizardForm::bCancel_Click() {
    reject();
}

void WizardForm::lURL_Click() {
    ShowHelp(this);
}

void WizardForm::ConnectCommonControls() {
    connect(findChild<QPushButton*>(QStringLiteral("bNext")), &QPushButton::clicked, this,
            [this] { Next(); });
    if (auto* const bCancel = findChild<QPushButton*>(QStringLiteral("bCancel")))
        connect(bCancel, &QPushButton::clicked, this, &WizardForm::bCancel_Click);
    connect(findChild<LinkLabel*>(QStringLiteral("lURL")), &LinkLabel::Activated, this,
            &WizardForm::lURL_Click);
    for (QComboBox* const list : findChildren<QComboBox*>())
        GuardFromWheel(*list);
}

void WizardForm::WriteHelp(QPlainTextEdit& txtHelp, const QString& text) {
    QFont font(QStringLiteral("Courier New"));
    font.setStyleHint(QFont::Monospace);
    font.setFixedPitch(true);
    txtHelp.setFont(font);
    txtHelp.setPlainText(text);
}
