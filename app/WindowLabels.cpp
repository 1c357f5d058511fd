#include "app/WindowLabels.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QPainter>

namespace {

/// A notice: of these a screen reader speaks what is newly shown, wherever the focus is.
class AccessiblePrompt : public QAccessibleWidget {
public:
    explicit AccessiblePrompt(PromptLabel& label)
        : QAccessibleWidget(&label, QAccessible::Notification), label_(label) {}

    QString text(QAccessible::Text kind) const override {
        return kind == QAccessible::Name ? label_.text() : QAccessibleWidget::text(kind);
    }

private:
    PromptLabel& label_;
};

QAccessibleInterface* MakeInterface(const QString&, QObject* object) {
    auto* const label = qobject_cast<PromptLabel*>(object);
    return label == nullptr ? nullptr : new AccessiblePrompt(*label); // the cache of Qt owns it
}

} // namespace

PromptLabel::PromptLabel(QWidget* parent) : QLabel(parent) {
    QAccessible::installFactory(&MakeInterface); // once, however often it is called
}

void PromptLabel::Say(const QString& text) {
    const bool isNew = text != this->text();
    setText(text);
    if (!isNew || text.isEmpty())
        return;
    for (const QAccessible::Event kind : {QAccessible::ObjectShow, QAccessible::Alert}) {
        QAccessibleEvent event(this, kind);
        QAccessible::updateAccessibility(&event);
    }
}

QSize YieldingLabel::minimumSizeHint() const {
    return {0, QLabel::minimumSizeHint().height()};
}

void YieldingLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRect place = contentsRect();
    painter.setPen(palette().color(foregroundRole()));
    painter.drawText(place, Qt::AlignRight | Qt::AlignVCenter | Qt::TextSingleLine,
                     fontMetrics().elidedText(text(), Qt::ElideRight, place.width()));
}
