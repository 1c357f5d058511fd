#pragma once

#include "dialogs/DialogForm.h"
#include "dialogs/RandomText.h"

#include <memory>

namespace Ui {
class frmAtlavexProperties;
}

/// Collects the encryption key of the library. The key field is empty when the dialog opens.
class frmAtlavexProperties : public DialogForm {
    Q_OBJECT
public:
    explicit frmAtlavexProperties(QWidget* parent = nullptr);
    ~frmAtlavexProperties() override;

    /// The mask with its marks replaced at random; see RandomText.
    QString RandomString(const QString& mask);

    QString EncryptionKey() const; ///< what stands in the field, whether or not the box is checked

private:
    void Load() override;
    void Refuse(const QString& reason);
    void cbEncrypt_Click();
    void btnKeyGenerate_Click();
    void btnOK_Click();

    std::unique_ptr<Ui::frmAtlavexProperties> ui_;
    SeededGenerator generator_;
};
