#pragma once

#include "dialogs/DialogForm.h"
#include "dialogs/MetadataEdits.h"

#include <memory>
#include <string>

class AtlavexIcon;
class AtlavexMap;
class Metadata;
class QLineEdit;
class QTreeWidgetItem;

namespace Ui {
class frmMetadata;
}

/// Shows and changes the metadata of one map or icon: the six fixed texts, and all others as a list.
class frmMetadata : public DialogForm {
    Q_OBJECT
public:
    explicit frmMetadata(QWidget* parent = nullptr);
    ~frmMetadata() override;

    /// Leaves only the name to be changed; to be called before one of the next two.
    void ReduceToName();
    /// Fills the dialog from the object, shows it and returns when it is closed. Overflow for more than
    /// 32,767 texts.
    void ShowMapMetaData(const std::shared_ptr<AtlavexMap>& map);
    void ShowIconMetaData(const std::shared_ptr<AtlavexIcon>& icon);

    /// Whether the name may stay as it is typed; if not, says why and gives its field the focus.
    bool check_name();

private:
    void Load() override;
    void Fill(const Metadata& object, const std::string& name);
    void FillCustomMetadata(const Metadata& object);
    Metadata& Object() const;
    void WriteTo(Metadata& object) const;
    bool RefuseName(const QString& reason);
    QTreeWidgetItem* SelectedEntry() const;

    void FixedField_Change();
    void lvCustomMeta_ItemClick();
    void tbData_Change();
    void btnAdd_Click();
    void btnRemove_Click();
    void btnOK_Click();

    /// A fixed text, in the order in which they are read and written.
    struct FixedField {
        const char* key;
        QLineEdit* field;
        std::string read; ///< the bytes that the field was filled with
    };
    static void FillField(FixedField& fixed, const std::string& value);

    std::unique_ptr<Ui::frmMetadata> ui_;
    std::vector<FixedField> fixedFields_;
    std::shared_ptr<AtlavexMap> map_;   ///< being edited; or
    std::shared_ptr<AtlavexIcon> icon_; ///< this one
    MetadataEdits edits_;
    bool filling_ = false; ///< fields are being set by the dialog itself
    bool nameOnly_ = false;
};
