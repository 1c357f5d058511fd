#pragma once

#include <QString>

#include <cstdint>

class QFileDialog;

/// A choice of one file to open or to save under. Remembers filter, folder and file name in the user's
/// settings, one set a dialog key. Made for one use: Init, SetTitle, SetFilter, SetDialogType, Show; if that
/// is true SaveSettings, then FileName.
class clsFileDialog {
public:
    static constexpr std::int16_t Open = 1;
    static constexpr std::int16_t Save = 2;

    /// Keeps both keys ("Brisquent", "OpenAtlavex") and reads what is remembered under them.
    void Init(const QString& applicationKey, const QString& dialogKey);

    void SetTitle(const QString& title) { title_ = title; }
    /// Description, "|", patterns, "|" and so on: "Bitmaps (*.bmp)|*.bmp|All (*.*)|*.*". Several patterns are
    /// separated by ";". Patterns match in either letter case.
    void SetFilter(const QString& filter) { filter_ = filter; }
    /// Open or Save; with any other value Show does nothing.
    void SetDialogType(std::int16_t type) { dialogType_ = type; }
    void SetInitDir(const QString& folder) { initDir_ = folder; }
    void SetFileName(const QString& fileName) { fileName_ = fileName; }

    /// Shows the system's dialog modally with everything set anew, starting without a file name. True when a
    /// file was chosen; otherwise nothing changes. To save, a name without a point gets the chosen filter's
    /// ending, where that has one.
    bool Show(QFileDialog& systemDialog);
    /// Remembers filter, folder and file name.
    void SaveSettings() const;

    /// The file's full path.
    QString FileName() const { return fileName_; }
    /// The part after the last separator.
    QString OnlyFileName() const;
    /// The folder to start in; after Show the file's, with the separator at its end.
    QString InitDir() const { return initDir_; }
    /// The chosen filter, counted from 1; 0 when none has ever been chosen.
    std::int16_t FilterIndex() const { return filterIndex_; }

private:
    QString KeyPath() const;

    QString applicationKey_;
    QString dialogKey_;
    QString title_;
    QString filter_;
    QString fileName_;
    QString initDir_;
    std::int16_t filterIndex_ = 0;
    std::int16_t dialogType_ = 0;
};
