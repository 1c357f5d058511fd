#pragma once

#include "tests/support/desktop/Controls.h"

#include <array>

/// The ways in which a user gives up a form of the wizards: its button, Escape where the focus is, and the
/// close button of its frame.
using WayOut = void (*)(QWidget& shown);
inline constexpr std::array<WayOut, 3> WaysOut{
    [](QWidget& shown) { Click(shown, "bCancel"); },
    [](QWidget& shown) {
        QTest::keyClick(shown.focusWidget() != nullptr ? shown.focusWidget() : &shown, Qt::Key_Escape);
    },
    [](QWidget& shown) { shown.close(); }};
