#include "app/TextLines.h"

#include "app/WindowLabels.h"
#include "view/clsBitmapView.h"

#include <QTabWidget>

namespace {

QString SizeText(const QString& what, const clsBitmapView& view) {
    if (view.objBitmap() == nullptr)
        return {};
    return what + QStringLiteral(" size: (") + QString::number(view.MapWidth()) + QStringLiteral(", ") +
           QString::number(view.MapHeight()) + QLatin1Char(')');
}

} // namespace

void TextLines::SetTitle(const QString& name) {
    // "[*]" in a title stands for the mark of a changed document unless it is doubled.
    controls_.window.setWindowTitle(QStringLiteral("Quorvant Studio - ") +
                                    QString(name).replace(QStringLiteral("[*]"), QStringLiteral("[*][*]")));
}

void TextLines::SetHeader(const QString& text) {
    controls_.lHeader.Say(text);
}

void TextLines::ShowSizeOfPage() {
    const bool isMap = controls_.pages.currentIndex() == 0;
    controls_.lbSize.setText(isMap ? SizeText(QStringLiteral("Bitmap"), controls_.mapView)
                                   : SizeText(QStringLiteral("Icon"), controls_.iconView));
}

void TextLines::ClearSize() {
    controls_.lbSize.clear();
}
