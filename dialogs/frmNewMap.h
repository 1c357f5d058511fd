#pragma once

#include <QDialog>

#include <cstdint>
#include <memory>

namespace Ui {
class frmNewMap;
}

/// Asks for the name, description and tile size of a map to be added; reduced, for those of an icon.
class frmNewMap : public QDialog {
    Q_OBJECT
public:
    explicit frmNewMap(QWidget* parent = nullptr);
    ~frmNewMap() override;

    void SetName(const QString& name);
    /// Selects these texts in the lists of tile sizes, where they are in them.
    void SetTile(const QString& width, const QString& height);
    /// For an icon: its caption, and no choice of a tile size.
    void ReduceToIcon();

    QString Name() const;
    QString Description() const;
    std::int32_t TileWidth() const;  ///< pixels
    std::int32_t TileHeight() const; ///< pixels
    bool OK() const { return ok_; }  ///< whether btnOK closed it

    void reject() override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    void Load();
    void Activate();
    void btnOK_Click();
    void btnCancel_Click();

    std::unique_ptr<Ui::frmNewMap> ui_;
    bool ok_ = false;
};
