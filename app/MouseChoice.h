#pragma once

#include <QObject>

class QComboBox;

/// Tells whether the entry of a drop-down list that was chosen last was chosen with the mouse. Who clicks an
/// entry wants to go on with what it shows; who steps through the list by keys wants to stay in it.
class MouseChoice : public QObject {
public:
    explicit MouseChoice(QComboBox& list);

    /// To be asked when the list says that an entry was chosen.
    bool IsByMouse() const { return isByMouse_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool isByMouse_ = false;
};
