#pragma once

#include <QString>

class PromptLabel;
class QLabel;
class QTabWidget;
class QWidget;
class clsBitmapView;

/// The texts of the main window beside the status line: its title, lHeader and lbSize.
class TextLines {
public:
    struct Controls {
        QWidget& window;
        PromptLabel& lHeader;
        QLabel& lbSize;
        const QTabWidget& pages;
        const clsBitmapView& mapView;
        const clsBitmapView& iconView;
    };
    explicit TextLines(const Controls& controls) : controls_(controls) {}

    void SetTitle(const QString& name); ///< the program's name and this one
    void SetHeader(const QString& text);
    /// "Bitmap size: (600, 400)" or "Icon size: …" of what the visible page shows, empty when it shows
    /// nothing.
    void ShowSizeOfPage();
    void ClearSize();

private:
    Controls controls_;
};
