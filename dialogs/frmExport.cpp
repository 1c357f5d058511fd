#include "dialogs/frmExport.h"

#include "base/StandardErrors.h"
#include "component/AtlavexMap.h"
#include "dialogs/ExportNames.h"
#include "platform/modBrowseFolder.h"
#include "platform/modFields.h"
#include "platform/modGUID.h"
#include "platform/modMessages.h"
#include "platform/modRegistry.h"
#include "ui_frmExport.h"

#include <QScopedValueRollback>

#include <exception>

namespace {

const auto MakerKey = QStringLiteral("Software\\Kestova");
const auto ProgramKey = QStringLiteral("Software\\Kestova\\Brisquent");
const auto ExportKey = QStringLiteral("Software\\Kestova\\Brisquent\\Export");
const auto PresetFolder = QStringLiteral("C:\\");
constexpr std::int32_t LastFileType = 3;

QString Remembered(const QString& valueName) {
    return QueryValue(RootKey::CurrentUser, ExportKey, valueName).toString();
}

} // namespace

frmExport::frmExport(QWidget* parent) : DialogForm(parent), ui_(std::make_unique<Ui::frmExport>()) {
    ui_->setupUi(this);
    FillCombo(*ui_->cbImageFormat, QStringList{QStringLiteral("png")});
    connect(ui_->btnBrowse, &QPushButton::clicked, this, &frmExport::btnBrowse_Click);
    connect(ui_->btnExport, &QPushButton::clicked, this, &frmExport::btnExport_Click);
    ConnectCancel(*ui_->btnCancel);
}

frmExport::~frmExport() = default;

void frmExport::Load() {
    ReadSettings();
    ui_->tbName->setText(QString::fromStdString(Map->Name()));
    ui_->tbExportTo->setText(InitDir);
    // A remembered format that this list does not have is the first one.
    ui_->cbImageFormat->setCurrentIndex(FileType < ui_->cbImageFormat->count() ? FileType : 0);
    ui_->btnCancel->setEnabled(true);
    ui_->btnExport->setEnabled(true);
    ui_->tbName->setFocus();
    ui_->tbName->selectAll();
}

void frmExport::ReadSettings() {
    InitDir = Remembered(QStringLiteral("InitDir"));
    if (InitDir.isEmpty())
        InitDir = PresetFolder;
    FileType = Remembered(QStringLiteral("FileType")).toInt(); // no number: 0
    if (FileType < 0 || FileType > LastFileType)
        FileType = 0;
}

void frmExport::SaveSettings() const {
    for (const QString& key : {MakerKey, ProgramKey, ExportKey})
        CreateNewKey(RootKey::CurrentUser, key);
    SetKeyValue(RootKey::CurrentUser, ExportKey, QStringLiteral("FileType"), QString::number(FileType));
    SetKeyValue(RootKey::CurrentUser, ExportKey, QStringLiteral("InitDir"), InitDir);
}

void frmExport::btnBrowse_Click() {
    const QString folder =
        BrowseForFolder(this, QStringLiteral("Select output folder for tiles"), ui_->tbExportTo->text());
    if (!folder.isEmpty())
        ui_->tbExportTo->setText(folder);
}

void frmExport::btnExport_Click() {
    InitDir = ui_->tbExportTo->text();
    FileType = ui_->cbImageFormat->currentIndex();
    try {
        CompleteIdentifier();
        const QString folder = MakeTargetFolder();
        ui_->btnCancel->setEnabled(false);
        ui_->btnExport->setEnabled(false);
        ExportTiles(folder);
    } catch (const std::exception& error) {
        ui_->btnCancel->setEnabled(true);
        ui_->btnExport->setEnabled(true);
        ui_->btnExport->setFocus();
        ShowMessage(this, QString::fromStdString(SentenceOf(error)));
        return;
    }
    ShowMessage(this, QStringLiteral("Tile Image Export completed!"));
    SaveSettings();
    AcceptOK();
}

void frmExport::CompleteIdentifier() {
    if (!IsGUIDText(Map->Identifier()))
        Map->SetIdentifier(CreateGUID());
}

QString frmExport::MakeTargetFolder() const {
    QString folder = InitDir + QLatin1Char('/') + QString::fromStdString(Map->Identifier()) +
                     QLatin1Char('_') + CreatePosixFileSystemCompatibleString(ui_->tbName->text());
    QString errorText; // not shown: the export itself says that it has no folder, and why
    MakeDir(folder, errorText);
    return folder;
}

void frmExport::ExportTiles(const QString& folder) {
    const std::string target = folder.toStdString() + "/";
    const std::string extension = "." + ComboText(*ui_->cbImageFormat).toStdString();
    const QScopedValueRollback busy(exporting_, true);
    // The whole dialog: the progress window lets waiting input through.
    setEnabled(false);
    const auto enableAgain = qScopeGuard([this] { setEnabled(true); });
    const auto work = [&] { Map->ExportTiles(target, extension); };
    if (AroundExport)
        AroundExport(work);
    else
        work();
}

void frmExport::reject() {
    if (!exporting_)
        DialogForm::reject();
}
