#include "tests/support/desktop/ModalScript.h"

#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace {

constexpr int PollMilliseconds = 2;
// Long enough for a busy machine: a test that would hang for ever shall fail and say where.
constexpr int StuckMilliseconds = 60000;

void TypeInto(QWidget& window, const std::optional<QString>& text) {
    if (!text) {
        QTest::keyClick(&window, Qt::Key_Escape);
        return;
    }
    auto* const field = window.findChild<QLineEdit*>(QStringLiteral("txtInput"));
    ASSERT_NE(field, nullptr);
    field->selectAll();
    QTest::keyClicks(field, *text);
    QTest::keyClick(field, Qt::Key_Return);
}

} // namespace

ModalScript::ModalScript() {
    Arm();
}

ModalScript::~ModalScript() {
    for (const Step& step : steps_)
        ADD_FAILURE() << "A window that was expected never came: " << step.name.toStdString();
}

ModalScript& ModalScript::ExpectBox(const QString& text, QMessageBox::StandardButton press) {
    return Expect(QStringLiteral("MessageBox"), [text, press](QWidget& window) {
        const auto& box = dynamic_cast<QMessageBox&>(window);
        EXPECT_EQ(box.text().toStdString(), text.toStdString());
        EXPECT_EQ(box.textFormat(), Qt::PlainText);
        EXPECT_EQ(box.windowTitle().toStdString(), "Quorvant Studio");
        QWidget* const button = box.button(press);
        ASSERT_NE(button, nullptr) << "The box has no such button: " << text.toStdString();
        QTest::mouseClick(button, Qt::LeftButton);
    });
}

ModalScript& ModalScript::ExpectInput(const QString& prompt, const std::optional<QString>& type) {
    return Expect(QStringLiteral("InputBox"), [prompt, type](QWidget& window) {
        const auto* const label = window.findChild<QLabel*>();
        ASSERT_NE(label, nullptr);
        EXPECT_EQ(label->text().toStdString(), prompt.toStdString());
        TypeInto(window, type);
    });
}

ModalScript& ModalScript::Expect(const QString& name, std::function<void(QWidget&)> act) {
    steps_.push_back({name, std::move(act)});
    return *this;
}

void ModalScript::Arm() {
    // A single shot each time: a repeating timer stays silent while its own slot runs a nested event loop.
    QTimer::singleShot(PollMilliseconds, this, &ModalScript::Poll);
}

void ModalScript::Poll() {
    Arm();
    QWidget* const window = QApplication::activeModalWidget();
    if (window == nullptr || !window->isVisible())
        return;
    if (std::find(met_.begin(), met_.end(), window) != met_.end()) {
        EndStuck(*window);
        return;
    }
    met_.emplace_back(window);
    sinceMet_.start();
    window->installEventFilter(this);
    Meet(*window);
}

// A window that is shown again, perhaps without a moment in between, has its next step.
bool ModalScript::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Hide)
        std::erase_if(met_, [watched](const QPointer<QWidget>& window) {
            return window.isNull() || window.data() == watched;
        });
    return false;
}

void ModalScript::EndStuck(QWidget& window) {
    if (!sinceMet_.hasExpired(StuckMilliseconds))
        return;
    ADD_FAILURE() << "A window had its step and does not go away: " << window.objectName().toStdString()
                  << " " << window.windowTitle().toStdString();
    sinceMet_.start();
    if (auto* const dialog = qobject_cast<QDialog*>(&window))
        dialog->done(QDialog::Rejected);
    else
        window.close();
}

void ModalScript::Meet(QWidget& window) {
    const QString shown = window.objectName().isEmpty()
                              ? QString::fromLatin1(window.metaObject()->className())
                              : window.objectName();
    if (steps_.empty() || (steps_.front().name != window.objectName() &&
                           steps_.front().name != QLatin1String(window.metaObject()->className()))) {
        const auto* const box = qobject_cast<QMessageBox*>(&window);
        ADD_FAILURE() << "Nobody expected " << shown.toStdString() << ": "
                      << (box != nullptr ? box->text() : window.windowTitle()).toStdString();
        window.close();
        return;
    }
    const Step step = std::move(steps_.front());
    steps_.pop_front();
    step.act(window);
}
