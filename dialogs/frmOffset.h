#pragma once

#include <QDialog>

#include <cstdint>
#include <memory>

namespace Ui {
class frmOffset;
}

/// Asks for the displacement of an icon from its position, in pixels.
class frmOffset : public QDialog {
    Q_OBJECT
public:
    explicit frmOffset(QWidget* parent = nullptr);
    ~frmOffset() override;

    /// The values shown when the dialog opens.
    void SetOffset(std::int32_t x, std::int32_t y);
    std::int32_t OffsetX() const { return offsetX_; } ///< positive: to the right
    std::int32_t OffsetY() const { return offsetY_; } ///< positive: downwards
    bool OK() const { return ok_; }                   ///< whether bOK closed it

    void reject() override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    void Load();
    void bOK_Click();
    void bCancel_Click();

    std::unique_ptr<Ui::frmOffset> ui_;
    std::int32_t offsetX_ = 0;
    std::int32_t offsetY_ = 0;
    bool ok_ = false;
};
