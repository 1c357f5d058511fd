#pragma once

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QStringList>
#include <QTest>
#include <QWidget>

#include <stdexcept>
#include <string>
#include <vector>

// What a user does with the controls of a window, found by name.

/// The control of this name and kind; a test that names a control that is not there ends.
template <typename Kind>
Kind& Control(const QWidget& window, const char* name) {
    auto* const control = window.findChild<Kind*>(QString::fromLatin1(name));
    if (control == nullptr)
        throw std::runtime_error(std::string("There is no such control: ") + name);
    return *control;
}

/// A press and release of the left button in the control's middle.
void Click(const QWidget& window, const char* name);

/// Opens the list, goes to the entry and presses Enter.
void Pick(QWidget& window, const char* list, const QString& entry);
/// The entries of a list.
std::vector<std::string> Entries(const QWidget& window, const char* list);

/// Replaces the field's text key by key.
void TypeInto(const QWidget& window, const char* name, const QString& text);
/// Clicks into the field, which selects its text, and types over it. The field keeps the focus.
void Type(QWidget& window, const char* field, const QString& text);
/// The same, and leaves it by the Tab key.
void TypeAndLeave(QWidget& window, const char* field, const QString& text);
/// Clicks into the field and pastes.
void Paste(QWidget& window, const char* field, const QString& text);
/// What stands in the field.
std::string Text(const QWidget& window, const char* field);

/// Whether the control is meant to be seen, whatever frame it is in.
bool IsShown(const QWidget& window, const char* name);

/// The names of the controls that Tab reaches, from the one with the focus until it comes back.
QStringList TabOrder(QWidget& window);
