#pragma once

#include <QDialog>

class QPushButton;

/// What the dialogs have in common that are left by OK or Cancel: they fill themselves whenever they are
/// opened, and Escape and the close button count as Cancel.
class DialogForm : public QDialog {
    Q_OBJECT

public:
    /// Whether it was last left by OK; false while it is open.
    bool OK() const { return ok_; }

    void reject() override;

protected:
    using QDialog::QDialog;

    /// Runs on every opening, before the form is visible.
    virtual void Load() = 0;
    void ConnectCancel(const QPushButton& cancel);
    /// Closes the form as OK does.
    void AcceptOK();

    void showEvent(QShowEvent* event) final;

private:
    void btnCancel_Click();

    bool ok_ = false;
};
