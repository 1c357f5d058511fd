#include "tests/support/desktop/Controls.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QClipboard>
#include <QRadioButton>

#include <gtest/gtest.h>

namespace {

/// Offscreen, nobody makes a form active again when a list or a box before it has closed.
void Activate(const QWidget& window) {
    QWidget* const modal = QApplication::activeModalWidget();
    if (modal != &window || modal->isActiveWindow())
        return;
    modal->activateWindow();
    QApplication::processEvents();
}

void Enter(const QWidget& window, QLineEdit& edit) {
    Activate(window);
    const bool isThere = edit.hasFocus();
    QTest::mouseClick(&edit, Qt::LeftButton, {}, QPoint(6, edit.height() / 2));
    if (isThere)
        QTest::keyClick(&edit, Qt::Key_A, Qt::ControlModifier);
}

} // namespace

void Click(const QWidget& window, const char* name) {
    Activate(window);
    auto& control = Control<QWidget>(window, name);
    // A radio button answers on its indicator and caption only.
    const QPoint place = qobject_cast<QRadioButton*>(&control) != nullptr ? QPoint(8, control.height() / 2)
                                                                          : control.rect().center();
    QTest::mouseClick(&control, Qt::LeftButton, {}, place);
}

void Pick(QWidget& window, const char* list, const QString& entry) {
    auto& combo = Control<QComboBox>(window, list);
    const int row = combo.findText(entry, Qt::MatchExactly | Qt::MatchCaseSensitive);
    ASSERT_GE(row, 0) << entry.toStdString();
    Activate(window);
    combo.setFocus(Qt::MouseFocusReason);
    combo.showPopup();
    combo.view()->setCurrentIndex(combo.model()->index(row, combo.modelColumn()));
    QTest::keyClick(combo.view(), Qt::Key_Return);
}

std::vector<std::string> Entries(const QWidget& window, const char* list) {
    const auto& combo = Control<QComboBox>(window, list);
    std::vector<std::string> entries;
    for (int row = 0; row < combo.count(); ++row)
        entries.push_back(combo.itemText(row).toStdString());
    return entries;
}

void Type(QWidget& window, const char* field, const QString& text) {
    auto& edit = Control<QLineEdit>(window, field);
    Enter(window, edit);
    if (text.isEmpty())
        QTest::keyClick(&edit, Qt::Key_Delete);
    QTest::keyClicks(&edit, text);
}

void TypeAndLeave(QWidget& window, const char* field, const QString& text) {
    Type(window, field, text);
    QTest::keyClick(&Control<QLineEdit>(window, field), Qt::Key_Tab);
}

void Paste(QWidget& window, const char* field, const QString& text) {
    auto& edit = Control<QLineEdit>(window, field);
    Enter(window, edit);
    QApplication::clipboard()->setText(text);
    QTest::keyClick(&edit, Qt::Key_V, Qt::ControlModifier);
}

std::string Text(const QWidget& window, const char* field) {
    return Control<QLineEdit>(window, field).text().toStdString();
}

bool IsShown(const QWidget& window, const char* name) {
    return !Control<QWidget>(window, name).isHidden();
}

void TypeInto(const QWidget& window, const char* name, const QString& text) {
    auto& field = Control<QWidget>(window, name);
    field.setFocus();
    QTest::keyClick(&field, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&field, Qt::Key_Delete);
    QTest::keyClicks(&field, text);
}

QStringList TabOrder(QWidget& window) {
    QStringList names;
    while (window.focusWidget() != nullptr && !names.contains(window.focusWidget()->objectName())) {
        names.append(window.focusWidget()->objectName());
        QTest::keyClick(window.focusWidget(), Qt::Key_Tab);
    }
    return names;
}
