#include "view/ViewerAccessible.h"

#include "view/KarvelViewer.h"

#include <QAccessibleWidget>

namespace {

class ViewerAccessible : public QAccessibleWidget {
public:
    explicit ViewerAccessible(KarvelViewer* viewer)
        : QAccessibleWidget(viewer, QAccessible::Graphic), viewer_(*viewer) {}

    QString text(QAccessible::Text kind) const override {
        // Some desktops hand on no values that are texts, but every one the description.
        if (kind == QAccessible::Value || kind == QAccessible::Description)
            return viewer_.ValueText();
        return QAccessibleWidget::text(kind);
    }

private:
    const KarvelViewer& viewer_;
};

QAccessibleInterface* MakeAccessible(const QString&, QObject* object) {
    auto* const viewer = qobject_cast<KarvelViewer*>(object);
    // Qt owns what a factory makes.
    return viewer != nullptr ? new ViewerAccessible(viewer) : nullptr;
}

} // namespace

void MakeViewersAccessible() {
    QAccessible::installFactory(MakeAccessible);
}
