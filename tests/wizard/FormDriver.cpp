#include "tests/wizard/FormDriver.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QClipboard>
#include <QRadioButton>

namespace {

/// Offscreen, nobody makes a form active again when a list or a box before it has closed.
void Activate(QWidget& form) {
    if (form.isActiveWindow())
        return;
    form.activateWindow();
    QApplication::processEvents();
}

void Enter(QWidget& form, QLineEdit& edit) {
    Activate(form);
    const bool isThere = edit.hasFocus();
    QTest::mouseClick(&edit, Qt::LeftButton, {}, QPoint(6, edit.height() / 2));
    if (isThere)
        QTest::keyClick(&edit, Qt::Key_A, Qt::ControlModifier);
}

} // namespace

void Click(QWidget& form, const char* name) {
    Activate(form);
    auto& control = Find<QWidget>(form, name);
    // A radio button answers on its indicator and caption only.
    const QPoint place = qobject_cast<QRadioButton*>(&control) != nullptr ? QPoint(8, control.height() / 2)
                                                                          : control.rect().center();
    QTest::mouseClick(&control, Qt::LeftButton, {}, place);
}

void Pick(QWidget& form, const char* list, const QString& entry) {
    auto& combo = Find<QComboBox>(form, list);
    const int row = combo.findText(entry, Qt::MatchExactly | Qt::MatchCaseSensitive);
    ASSERT_GE(row, 0) << entry.toStdString();
    Activate(form);
    combo.setFocus(Qt::MouseFocusReason);
    combo.showPopup();
    combo.view()->setCurrentIndex(combo.model()->index(row, combo.modelColumn()));
    QTest::keyClick(combo.view(), Qt::Key_Return);
}

std::vector<std::string> Entries(QWidget& form, const char* list) {
    const auto& combo = Find<QComboBox>(form, list);
    std::vector<std::string> entries;
    for (int row = 0; row < combo.count(); ++row)
        entries.push_back(combo.itemText(row).toStdString());
    return entries;
}

void Type(QWidget& form, const char* field, const QString& text) {
    auto& edit = Find<QLineEdit>(form, field);
    Enter(form, edit);
    if (text.isEmpty())
        QTest::keyClick(&edit, Qt::Key_Delete);
    QTest::keyClicks(&edit, text);
}

void TypeAndLeave(QWidget& form, const char* field, const QString& text) {
    Type(form, field, text);
    QTest::keyClick(&Find<QLineEdit>(form, field), Qt::Key_Tab);
}

void Paste(QWidget& form, const char* field, const QString& text) {
    auto& edit = Find<QLineEdit>(form, field);
    Enter(form, edit);
    QApplication::clipboard()->setText(text);
    QTest::keyClick(&edit, Qt::Key_V, Qt::ControlModifier);
}

std::string Text(QWidget& form, const char* field) {
    return Find<QLineEdit>(form, field).text().toStdString();
}

bool IsShown(QWidget& form, const char* name) {
    return !Find<QWidget>(form, name).isHidden();
}
