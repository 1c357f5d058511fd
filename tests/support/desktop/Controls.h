#pragma once

#include <QApplication>
#include <QStringList>
#include <QTest>
#include <QWidget>

#include <stdexcept>

/// The control of this name and kind; a test that names a control that is not there ends.
template <typename Kind>
Kind& Control(const QWidget& window, const char* name) {
    auto* const control = window.findChild<Kind*>(QString::fromLatin1(name));
    if (control == nullptr)
        throw std::runtime_error(std::string("There is no such control: ") + name);
    return *control;
}

/// A click with the left button in the control's middle.
inline void Click(const QWidget& window, const char* name) {
    QTest::mouseClick(&Control<QWidget>(window, name), Qt::LeftButton);
}

/// Replaces the field's text key by key.
inline void TypeInto(const QWidget& window, const char* name, const QString& text) {
    auto& field = Control<QWidget>(window, name);
    field.setFocus();
    QTest::keyClick(&field, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&field, Qt::Key_Delete);
    QTest::keyClicks(&field, text);
}

/// The names of the controls that Tab reaches, from the one with the focus until it comes back.
inline QStringList TabOrder(QWidget& window) {
    QStringList names;
    while (window.focusWidget() != nullptr && !names.contains(window.focusWidget()->objectName())) {
        names.append(window.focusWidget()->objectName());
        QTest::keyClick(window.focusWidget(), Qt::Key_Tab);
    }
    return names;
}
