#pragma once

#include <QDialog>

class QPlainTextEdit;

/// What the forms of the wizards have in common: they are shown modally, left by "Next ->" (confirmed) or by
/// "Cancel", Escape or the close button (not confirmed), and have a link to the help.
class WizardForm : public QDialog {
    Q_OBJECT

public:
    /// Fills the form anew, shows it and returns when it is closed: whether it was confirmed. The form may be
    /// shown again.
    bool ShowModal();
    /// Whether it was last closed by "Next ->".
    bool Confirmed() const { return confirmed_; }

protected:
    explicit WizardForm(QWidget* parent);

    /// Runs on every showing, before the form is visible.
    virtual void Form_Load() = 0;
    /// Connects what every form has; to be called once the controls exist.
    void ConnectCommonControls();
    void WriteHelp(QPlainTextEdit& txtHelp, const QString& text);
    void Confirm();

    virtual void bNext_Click() = 0;
    void bCancel_Click();
    void lURL_Click();

private:
    void Next();

    bool confirmed_ = false;
};
