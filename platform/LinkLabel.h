#pragma once

#include <QLabel>

/// A label that works like a link: underlined, in the palette's colour for links, and activated by a click or
/// by Space or Enter while it has the focus. Its text is the caption alone, without markup.
class LinkLabel : public QLabel {
    Q_OBJECT

public:
    explicit LinkLabel(QWidget* parent = nullptr);

Q_SIGNALS:
    void Activated();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};
