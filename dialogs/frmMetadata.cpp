#include "dialogs/frmMetadata.h"

#include "base/CheckedNumbers.h"
#include "component/AtlavexIcon.h"
#include "component/AtlavexMap.h"
#include "platform/modFields.h"
#include "platform/modMessages.h"
#include "ui_frmMetadata.h"

#include <QScopedValueRollback>
#include <QStyledItemDelegate>
#include <limits>

namespace {

/// Shows the beginning of each text as one line.
class OneLineDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QString displayText(const QVariant& value, const QLocale& locale) const override {
        return OneLine(QStyledItemDelegate::displayText(value, locale));
    }
};

constexpr int KeyColumn = 0;
constexpr int DataColumn = 1;
constexpr int KeyColumnWidth = 160; ///< at first
constexpr int EntryRole = Qt::UserRole;

int EntryOf(const QTreeWidgetItem& item) {
    return item.data(KeyColumn, EntryRole).toInt();
}

QTreeWidgetItem* MakeItem(int entry, const std::string& key, const std::string& value) {
    auto* const item =
        new QTreeWidgetItem(QStringList{QString::fromStdString(key), QString::fromStdString(value)});
    item->setData(KeyColumn, EntryRole, entry);
    return item;
}

/// What a field stands for: as long as it shows what was read, the very bytes. Those that are no UTF-8 are
/// shown as replacement characters, which must not take their place.
std::string BytesOf(const QLineEdit& field, const std::string& read) {
    return field.text() == QString::fromStdString(read) ? read : field.text().toStdString();
}

using Pairs = std::vector<std::pair<std::string, std::string>>;

Pairs PairsOf(const Metadata& object) {
    Pairs pairs;
    for (std::int32_t position = 1; position <= object.MetadataCount(); ++position)
        pairs.emplace_back(object.MetadataKeyAt(position), object.MetadataValueAt(position));
    return pairs;
}

void PutBack(Metadata& object, const Pairs& pairs) {
    while (object.MetadataCount() > 0)
        object.RemoveMetadata(object.MetadataKeyAt(object.MetadataCount()));
    for (const auto& [key, value] : pairs)
        object.SetMetadata(key, value);
}

} // namespace

frmMetadata::frmMetadata(QWidget* parent) : DialogForm(parent), ui_(std::make_unique<Ui::frmMetadata>()) {
    ui_->setupUi(this);
    fixedFields_ = {{"name", ui_->tbMetaName, {}},   {"author", ui_->tbAuthor, {}},
                    {"version", ui_->tbVersion, {}}, {"lastchanged", ui_->tbLastChanged, {}},
                    {"created", ui_->tbCreated, {}}, {"description", ui_->tbDescription, {}}};
    for (const FixedField& fixed : fixedFields_) {
        // A field of limited length would cut what it only had to show.
        fixed.field->setMaxLength(std::numeric_limits<int>::max());
        connect(fixed.field, &QLineEdit::textChanged, this, &frmMetadata::FixedField_Change);
    }
    ui_->tbData->setMaxLength(std::numeric_limits<int>::max());
    ui_->lvCustomMeta->setItemDelegate(new OneLineDelegate(this));
    ui_->lvCustomMeta->setColumnWidth(KeyColumn, KeyColumnWidth);
    connect(ui_->lvCustomMeta, &QTreeWidget::itemSelectionChanged, this,
            &frmMetadata::lvCustomMeta_ItemClick);
    connect(ui_->tbData, &QLineEdit::textChanged, this, &frmMetadata::tbData_Change);
    connect(ui_->btnAdd, &QPushButton::clicked, this, &frmMetadata::btnAdd_Click);
    connect(ui_->btnRemove, &QPushButton::clicked, this, &frmMetadata::btnRemove_Click);
    connect(ui_->btnOK, &QPushButton::clicked, this, &frmMetadata::btnOK_Click);
    ConnectCancel(*ui_->btnCancel);
}

frmMetadata::~frmMetadata() = default;

void frmMetadata::ReduceToName() {
    nameOnly_ = true;
    ui_->SSTab1->setCurrentWidget(ui_->tabProperties);
    ui_->SSTab1->setTabEnabled(ui_->SSTab1->indexOf(ui_->tabCustomMetadata), false);
    for (QWidget* const widget : std::initializer_list<QWidget*>{
             ui_->lbAuthor, ui_->tbAuthor, ui_->lbVersion, ui_->tbVersion, ui_->lbDescription,
             ui_->tbDescription, ui_->lbCreated, ui_->tbCreated, ui_->lbLastChanged, ui_->tbLastChanged})
        widget->setEnabled(false);
}

void frmMetadata::ShowMapMetaData(const std::shared_ptr<AtlavexMap>& map) {
    map_ = map;
    icon_ = nullptr;
    Fill(*map, map->Name());
    exec();
}

void frmMetadata::ShowIconMetaData(const std::shared_ptr<AtlavexIcon>& icon) {
    map_ = nullptr;
    icon_ = icon;
    Fill(*icon, icon->Name());
    exec();
}

void frmMetadata::FillField(FixedField& fixed, const std::string& value) {
    fixed.read = value;
    fixed.field->setText(QString::fromStdString(value));
}

void frmMetadata::Fill(const Metadata& object, const std::string& name) {
    const QScopedValueRollback guard(filling_, true);
    for (FixedField& fixed : fixedFields_)
        FillField(fixed, fixed.field == ui_->tbMetaName ? name : object.GetMetadata(fixed.key));
    FillCustomMetadata(object);
    ui_->btnOK->setEnabled(false);
    ui_->tbMetaName->setFocus();
    if (nameOnly_)
        ui_->tbMetaName->selectAll();
}

void frmMetadata::FillCustomMetadata(const Metadata& object) {
    edits_ = {};
    ui_->lvCustomMeta->clear();
    QList<QTreeWidgetItem*> items;
    const std::int32_t count = CheckedNarrow<std::int16_t>(object.MetadataCount());
    for (std::int32_t position = 1; position <= count; ++position) {
        const std::string key = object.MetadataKeyAt(position);
        if (std::ranges::any_of(fixedFields_, [&key](const FixedField& fixed) { return key == fixed.key; }))
            continue;
        const std::string value = object.MetadataValueAt(position);
        items.append(MakeItem(edits_.AddRead(key, value), key, value));
    }
    ui_->lvCustomMeta->addTopLevelItems(items);
    ui_->btnRemove->setEnabled(!items.isEmpty());
    ui_->tbData->clear();
    ui_->tbData->setEnabled(false);
}

void frmMetadata::Load() {
    ui_->btnOK->setEnabled(false);
}

void frmMetadata::FixedField_Change() {
    if (!filling_)
        ui_->btnOK->setEnabled(true);
}

QTreeWidgetItem* frmMetadata::SelectedEntry() const {
    const QList<QTreeWidgetItem*> selected = ui_->lvCustomMeta->selectedItems();
    return selected.isEmpty() ? nullptr : selected.front();
}

void frmMetadata::lvCustomMeta_ItemClick() {
    if (filling_)
        return;
    const QScopedValueRollback guard(filling_, true);
    const QTreeWidgetItem* const item = SelectedEntry();
    ui_->tbData->setText(item != nullptr ? item->text(DataColumn) : QString());
    ui_->tbData->setEnabled(item != nullptr);
}

void frmMetadata::tbData_Change() {
    QTreeWidgetItem* const item = SelectedEntry();
    if (filling_ || item == nullptr)
        return;
    item->setText(DataColumn, ui_->tbData->text());
    const int entry = EntryOf(*item);
    edits_.Change(entry, BytesOf(*ui_->tbData, edits_.ReadValue(entry)));
    ui_->btnOK->setEnabled(true);
}

void frmMetadata::btnAdd_Click() {
    const auto key = AskText(this, QStringLiteral("Input name of new metadata"));
    if (!key || key->isEmpty())
        return;
    const std::string keyText = key->toStdString();
    QTreeWidgetItem* const item = MakeItem(edits_.Add(keyText), keyText, {});
    ui_->lvCustomMeta->addTopLevelItem(item);
    ui_->btnRemove->setEnabled(true);
    ui_->btnOK->setEnabled(true);
    ui_->lvCustomMeta->setCurrentItem(item);
    ui_->tbData->setFocus();
}

void frmMetadata::btnRemove_Click() {
    QTreeWidgetItem* const item = SelectedEntry();
    if (item == nullptr)
        return;
    const QScopedValueRollback guard(filling_, true);
    edits_.Remove(EntryOf(*item), ui_->lvCustomMeta->indexOfTopLevelItem(item) + 1);
    delete item;
    // The list has chosen a neighbour by itself.
    ui_->lvCustomMeta->setCurrentItem(nullptr);
    ui_->btnRemove->setEnabled(ui_->lvCustomMeta->topLevelItemCount() > 0);
    ui_->tbData->clear();
    ui_->tbData->setEnabled(false);
    ui_->btnOK->setEnabled(true);
}

bool frmMetadata::check_name() {
    const QString name = WithoutOuterBlanks(ui_->tbMetaName->text());
    if (name.isEmpty())
        return RefuseName(QStringLiteral("No name written!"));
    if (name.front() == u'_')
        return RefuseName(QStringLiteral("Name may not start with \"_\""));
    return true;
}

bool frmMetadata::RefuseName(const QString& reason) {
    ShowMessage(this, reason);
    ui_->SSTab1->setCurrentWidget(ui_->tabProperties);
    ui_->tbMetaName->setFocus();
    return false;
}

Metadata& frmMetadata::Object() const {
    if (map_ != nullptr)
        return *map_;
    return *icon_;
}

void frmMetadata::WriteTo(Metadata& object) const {
    for (const FixedField& fixed : fixedFields_)
        object.SetMetadata(fixed.key, BytesOf(*fixed.field, fixed.read));
    edits_.WriteTo(object);
}

void frmMetadata::btnOK_Click() {
    if (!check_name())
        return;
    const Pairs before = PairsOf(Object());
    try {
        WriteTo(Object());
    } catch (const ComponentError& error) {
        // The dialog stays, and may be cancelled: then nothing has been written.
        PutBack(Object(), before);
        ShowMessage(this, QString::fromStdString(error.Description()));
        return;
    }
    AcceptOK();
}
