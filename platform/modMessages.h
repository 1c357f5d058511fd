#pragma once

#include <QString>

#include <optional>

class QWidget;

// Every message box, question and input box of the editor. All are modal, titled "Quorvant Studio", and show
// their text as plain text: what looks like markup in a map's name is shown as it was typed. `parent` is the
// window they stand before (nothing: none). Of a text that no screen has room for, more than some 1,500
// characters or 30 lines, the middle is left out; of words that are wider than the box every part is shown.
// The pointer is the normal one while they are open, whatever pointer a command has set.

enum class Answer { Yes, No, Cancel };

/// A text with an OK button.
void ShowMessage(QWidget* parent, const QString& text);

/// The same without waiting for the answer: for what happens while the user is at something else.
void OpenMessage(QWidget* parent, const QString& text);

/// The same as ShowMessage with the icon of a critical error.
void ShowError(QWidget* parent, const QString& text);

/// Yes and No, No the default button; Escape and the close button answer No.
bool AskYesNo(QWidget* parent, const QString& question);

/// Yes, No and Cancel, Yes the default button; Escape and the close button answer Cancel.
Answer AskYesNoCancel(QWidget* parent, const QString& question);

/// A line of text, as typed; nothing when cancelled. The box has the objectName "InputBox", its field
/// "txtInput".
std::optional<QString> AskText(QWidget* parent, const QString& prompt);
