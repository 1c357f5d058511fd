#pragma once

#include "dialogs/DialogForm.h"

#include <cstdint>
#include <memory>

namespace Ui {
class frmOffset;
}

/// Asks for the displacement of an icon from its position, in pixels.
class frmOffset : public DialogForm {
    Q_OBJECT
public:
    explicit frmOffset(QWidget* parent = nullptr);
    ~frmOffset() override;

    /// The values shown when the dialog opens.
    void SetOffset(std::int32_t x, std::int32_t y);
    std::int32_t OffsetX() const { return offsetX_; } ///< positive: to the right
    std::int32_t OffsetY() const { return offsetY_; } ///< positive: downwards

private:
    void Load() override;
    void bOK_Click();

    std::unique_ptr<Ui::frmOffset> ui_;
    std::int32_t offsetX_ = 0;
    std::int32_t offsetY_ = 0;
};
