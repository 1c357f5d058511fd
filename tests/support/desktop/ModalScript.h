#pragma once

#include <QElapsedTimer>
#include <QMessageBox>
#include <QObject>
#include <QPointer>

#include <deque>
#include <functional>
#include <optional>
#include <string>

/// What a test does with the modal windows that appear, in order. A window that nobody expected fails the
/// test and is closed; what was expected and has not come by the end fails it, too.
class ModalScript : public QObject {
public:
    ModalScript();
    ~ModalScript() override;

    /// A message box with exactly this text; presses the button.
    ModalScript& ExpectBox(const QString& text, QMessageBox::StandardButton press = QMessageBox::Ok);
    /// An input box with this prompt; types the text and presses Enter, or Escape for nothing.
    ModalScript& ExpectInput(const QString& prompt, const std::optional<QString>& type);
    /// A window whose objectName or class name is `name`; does `act` with it, which has to end it (or to
    /// leave that to a later step).
    ModalScript& Expect(const QString& name, std::function<void(QWidget& window)> act);

    /// Whether everything that was expected has come.
    bool IsDone() const { return steps_.empty(); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Step {
        QString name;
        std::function<void(QWidget&)> act;
    };

    void Poll();
    void Arm();
    void Meet(QWidget& window);
    void EndStuck(QWidget& window);

    std::deque<Step> steps_;
    std::vector<QPointer<QWidget>> met_; ///< windows on the screen that had their step
    QElapsedTimer sinceMet_;
};
