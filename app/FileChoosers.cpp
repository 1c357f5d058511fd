#include "app/FileChoosers.h"

#include "app/EditorWindow.h"
#include "platform/clsFileDialog.h"

namespace {

/// What sets one dialog apart; the key is under which it remembers its folder and filter.
struct FileChoice {
    QString key;
    QString title;
    QString filter;
    std::int16_t type = clsFileDialog::Open;
};

std::optional<QString> Choose(EditorWindow& window, const FileChoice& choice) {
    clsFileDialog dialog;
    dialog.Init(QStringLiteral("Brisquent"), choice.key);
    dialog.SetTitle(choice.title);
    dialog.SetFilter(choice.filter);
    dialog.SetDialogType(choice.type);
    if (!dialog.Show(window.FileDialog()))
        return std::nullopt;
    dialog.SaveSettings();
    return dialog.FileName();
}

// The blank before the last separator belongs to each of these texts.
QString LibraryFilter() {
    return QStringLiteral("Atlavex (*.Atlavex)|*.Atlavex|All files (*.*) |*.*");
}

QString MapImageFilter() {
    return QStringLiteral("All supported formats (*.bmp; *.gif; *.jpg; *.tif; *.png)|"
                          "*.bmp;*.gif;*.jpg;*.tif;*.png|"
                          "Bitmaps (*.bmp)|*.bmp|Gif (*.gif)|*.gif|TIFF (*.tif)|*.tif|"
                          "JPEG (*.jpg)|*.jpg|PNG (*.png)|*.png|All files (*.*) |*.*");
}

QString IconImageFilter() {
    return QStringLiteral("All supported formats (*.bmp; *.gif; *.jpg; *.tif)|"
                          "*.bmp;*.gif;*.jpg;*.tif|"
                          "Bitmaps (*.bmp)|*.bmp|Gif (*.gif)|*.gif|TIFF (*.tif)|*.tif|"
                          "JPEG (*.jpg)|*.jpg|All files (*.*) |*.*");
}

} // namespace

std::optional<QString> ChooseLibraryToOpen(EditorWindow& window) {
    return Choose(window, {QStringLiteral("OpenAtlavex"), QStringLiteral("Open Atlavex"), LibraryFilter()});
}

std::optional<QString> ChooseLibraryToMerge(EditorWindow& window) {
    return Choose(window, {QStringLiteral("OpenAtlavex"), QStringLiteral("Add Atlavex"), LibraryFilter()});
}

std::optional<QString> ChooseLibraryToSave(EditorWindow& window) {
    return Choose(window, {QStringLiteral("SaveAtlavexAs"), QStringLiteral("Save Atlavex As"),
                           LibraryFilter(), clsFileDialog::Save});
}

std::optional<QString> ChooseMapImage(EditorWindow& window) {
    return Choose(window, {QStringLiteral("NewBitmap"), QStringLiteral("Open new bitmap"), MapImageFilter()});
}

std::optional<QString> ChooseIconImage(EditorWindow& window) {
    return Choose(window, {QStringLiteral("NewIcon"), QStringLiteral("Open new icon"), IconImageFilter()});
}
