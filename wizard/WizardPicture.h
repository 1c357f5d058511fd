#pragma once

#include <QWidget>

/// A small drawing in the palette's colours that explains a choice or a step. It is drawn anew at every size
/// and device pixel ratio.
class WizardPicture : public QWidget {
    Q_OBJECT

public:
    enum class Subject {
        Linear,    ///< a sheet whose coordinate lines are straight and evenly spaced
        Polar,     ///< a sheet whose meridians run together and whose parallels are arcs
        UpperLeft, ///< a polar sheet with one corner pointed out
        LowerLeft,
        UpperRight,
        LowerRight
    };

    explicit WizardPicture(QWidget* parent = nullptr) : QWidget(parent) {}

    void Show(Subject subject);

Q_SIGNALS:
    void Clicked();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    Subject subject_ = Subject::Linear;
};
