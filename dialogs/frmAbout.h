#pragma once

#include "platform/modHelp.h"

#include <QDialog>

#include <memory>

namespace Ui {
class frmAbout;
}

/// Name and version of the program, and the way to its guide. Escape closes it.
class frmAbout : public QDialog {
    Q_OBJECT

public:
    explicit frmAbout(QWidget* parent = nullptr, AddressOpener open = OpenInBrowser());
    ~frmAbout() override;

private:
    void lURL_Click();

    std::unique_ptr<Ui::frmAbout> ui_;
    AddressOpener open_;
};
