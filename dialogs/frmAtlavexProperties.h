#pragma once

#include "dialogs/RandomText.h"

#include <QDialog>

#include <memory>

namespace Ui {
class frmAtlavexProperties;
}

/// Collects the encryption key of the library. The key field is empty when the dialog opens.
class frmAtlavexProperties : public QDialog {
    Q_OBJECT
public:
    explicit frmAtlavexProperties(QWidget* parent = nullptr);
    ~frmAtlavexProperties() override;

    /// The mask with its marks replaced at random; see RandomText.
    QString RandomString(const QString& mask);

    QString EncryptionKey() const;  ///< what stands in the field, whether or not the box is checked
    bool OK() const { return ok_; } ///< whether btnOK accepted the key

    void reject() override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    void Load();
    void TakeKey();
    void Refuse(const QString& reason);
    void cbEncrypt_Click();
    void btnKeyGenerate_Click();
    void btnOK_Click();
    void btnCancel_Click();

    std::unique_ptr<Ui::frmAtlavexProperties> ui_;
    SeededGenerator generator_;
    bool ok_ = false;
};
