#include "app/ImageChoosers.h"

#include "app/EditorWindow.h"
#include "platform/clsFileDialog.h"

namespace {

std::optional<QString> Choose(EditorWindow& window, const QString& key, const QString& title,
                              const QString& filter) {
    clsFileDialog dialog;
    dialog.Init(QStringLiteral("Brisquent"), key);
    dialog.SetTitle(title);
    dialog.SetFilter(filter);
    dialog.SetDialogType(clsFileDialog::Open);
    if (!dialog.Show(window.FileDialog()))
        return std::nullopt;
    dialog.SaveSettings();
    return dialog.FileName();
}

} // namespace

std::optional<QString> ChooseMapImage(EditorWindow& window) {
    return Choose(window, QStringLiteral("NewBitmap"), QStringLiteral("Open new bitmap"),
                  QStringLiteral("All supported formats (*.bmp; *.gif; *.jpg; *.tif; *.png)|"
                                 "*.bmp;*.gif;*.jpg;*.tif;*.png|"
                                 "Bitmaps (*.bmp)|*.bmp|Gif (*.gif)|*.gif|TIFF (*.tif)|*.tif|"
                                 "JPEG (*.jpg)|*.jpg|PNG (*.png)|*.png|All files (*.*) |*.*"));
}

std::optional<QString> ChooseIconImage(EditorWindow& window) {
    return Choose(window, QStringLiteral("NewIcon"), QStringLiteral("Open new icon"),
                  QStringLiteral("All supported formats (*.bmp; *.gif; *.jpg; *.tif)|"
                                 "*.bmp;*.gif;*.jpg;*.tif|"
                                 "Bitmaps (*.bmp)|*.bmp|Gif (*.gif)|*.gif|TIFF (*.tif)|*.tif|"
                                 "JPEG (*.jpg)|*.jpg|All files (*.*) |*.*"));
}
