#pragma once

#include <QLabel>

/// The line that says what a wizard waits for. A screen reader speaks a new text at once, as nobody's focus
/// is ever on it.
class PromptLabel : public QLabel {
    Q_OBJECT

public:
    explicit PromptLabel(QWidget* parent = nullptr);

    /// Shows the text, and has it spoken unless it is empty or stands there already.
    void Say(const QString& text);
};

/// A line of text that gives its room to its neighbours: where it does not fit it is cut, with an ellipsis.
class YieldingLabel : public QLabel {
    Q_OBJECT
public:
    using QLabel::QLabel;

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};
