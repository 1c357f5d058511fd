#include "dialogs/frmAtlavexProperties.h"

#include "base/ComponentError.h"
#include "platform/modMessages.h"
#include "ui_frmAtlavexProperties.h"

namespace {

constexpr qsizetype LongestKey = 16;     ///< characters
constexpr qsizetype LongestShortKey = 4; ///< characters

/// A character outside the 16-bit plane counts once.
qsizetype CharactersIn(const QString& text) {
    return static_cast<qsizetype>(text.toStdU32String().size());
}

} // namespace

frmAtlavexProperties::frmAtlavexProperties(QWidget* parent)
    : DialogForm(parent), ui_(std::make_unique<Ui::frmAtlavexProperties>()) {
    ui_->setupUi(this);
    connect(ui_->cbEncrypt, &QCheckBox::clicked, this, &frmAtlavexProperties::cbEncrypt_Click);
    connect(ui_->btnKeyGenerate, &QPushButton::clicked, this, &frmAtlavexProperties::btnKeyGenerate_Click);
    connect(ui_->btnOK, &QPushButton::clicked, this, &frmAtlavexProperties::btnOK_Click);
    ConnectCancel(*ui_->btnCancel);
}

frmAtlavexProperties::~frmAtlavexProperties() = default;

QString frmAtlavexProperties::RandomString(const QString& mask) {
    return RandomText(mask, std::ref(generator_));
}

QString frmAtlavexProperties::EncryptionKey() const {
    return ui_->tbEncryptionKey->text();
}

void frmAtlavexProperties::Load() {
    ui_->cbEncrypt->setChecked(false);
    ui_->tbEncryptionKey->clear();
    cbEncrypt_Click();
}

void frmAtlavexProperties::cbEncrypt_Click() {
    ui_->tbEncryptionKey->setEnabled(ui_->cbEncrypt->checkState() == Qt::Checked);
    ui_->btnKeyGenerate->setEnabled(ui_->cbEncrypt->checkState() != Qt::Unchecked);
}

void frmAtlavexProperties::btnKeyGenerate_Click() {
    try {
        generator_.Seed();
        ui_->tbEncryptionKey->setText(RandomString(QStringLiteral("NNNNNNNNNNNNNNNN")));
    } catch (const ComponentError& error) {
        Refuse(QString::fromStdString(error.Description()));
    }
}

void frmAtlavexProperties::btnOK_Click() {
    const qsizetype length = CharactersIn(EncryptionKey());
    // Both checks always run, and the second says what it says: an accepted key of 5 to 16 characters is
    // followed by its sentence. Meant: the guide tells users to go on.
    if (length <= LongestKey)
        AcceptOK();
    else
        Refuse(QStringLiteral("Error: Encryption key can not be longer than 16 characters"));
    if (length <= LongestShortKey)
        AcceptOK();
    else
        Refuse(QStringLiteral("Error: Encryption key must be longer than 4 characters"));
}

void frmAtlavexProperties::Refuse(const QString& reason) {
    ShowMessage(isVisible() ? this : parentWidget(), reason);
}
