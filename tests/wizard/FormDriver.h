#pragma once

#include <QComboBox>
#include <QLineEdit>
#include <QString>
#include <QTest>
#include <QWidget>

#include <gtest/gtest.h>

// What a user does with the controls of a form, found by name.

template <typename Control>
Control& Find(QWidget& form, const char* name) {
    auto* const control = form.findChild<Control*>(QLatin1String(name));
    if (control == nullptr)
        throw std::runtime_error(std::string("There is no control ") + name);
    return *control;
}

/// A press and release of the left button in the control's middle.
void Click(QWidget& form, const char* name);

/// Opens the list, goes to the entry and presses Enter.
void Pick(QWidget& form, const char* list, const QString& entry);
/// The entries of a list.
std::vector<std::string> Entries(QWidget& form, const char* list);

/// Clicks into the field, which selects its text, and types over it. The field keeps the focus.
void Type(QWidget& form, const char* field, const QString& text);
/// The same, and leaves it by the Tab key.
void TypeAndLeave(QWidget& form, const char* field, const QString& text);
/// Clicks into the field and pastes.
void Paste(QWidget& form, const char* field, const QString& text);

std::string Text(QWidget& form, const char* field);
/// Whether the control is meant to be seen, whatever frame it is in.
bool IsShown(QWidget& form, const char* name);
