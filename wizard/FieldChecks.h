#pragma once

#include <QObject>
#include <QString>

#include <functional>
#include <map>
#include <optional>

class QLineEdit;
class QWidget;

/// Takes over what was typed into a form's text boxes when they are left, each text once, and says in a
/// message box what is no number; the box then has the focus again. Entering a box selects its whole text.
class FieldChecks : public QObject {
    Q_OBJECT

public:
    /// Reads the box and stores its value. NumberError: the sentence is shown and the text stays.
    /// ComponentError, for a value that cannot be: the former text comes back, without a word.
    using Store = std::function<void()>;
    /// Gives the values back that stood before an insertion, and writes them into the boxes.
    using Restore = std::function<void()>;
    /// Tries to make something of a text that came in one piece, as by pasting; empty when it made nothing.
    using Insert = std::function<Restore(const QString& text)>;

    explicit FieldChecks(QWidget& form);

    void Watch(QLineEdit& field, Store store, Insert insert = {});
    /// Puts a text into a watched box as the one that stands for the stored value.
    void Write(QLineEdit& field, const QString& text);
    /// Before the form is confirmed: takes over what has not been taken yet, the focused box included, and
    /// shows what is left to be shown. False when something was refused: the form stays open.
    bool Settle();

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct State {
        Store store;
        Insert insert;
        QString written;                ///< stands for the stored value
        QString known;                  ///< the text before the last edit
        std::optional<QString> refused; ///< the text that was last refused
        bool entered = false;           ///< the next release of the mouse still belongs to entering it
    };

    /// What an insertion changed in several boxes at once, which no box can undo by itself.
    struct Insertion {
        Restore restore;
        std::map<QLineEdit*, QString> before;
        std::map<QLineEdit*, QString> after;
    };

    void Enter(QLineEdit& field, Qt::FocusReason reason);
    void Leave(QLineEdit& field, Qt::FocusReason reason);
    bool Check(QLineEdit& field);
    void Edited(QLineEdit& field, const QString& text);
    bool InsertInto(QLineEdit& field, const QString& text, const QString& before);
    bool Undo(QLineEdit& field);
    std::map<QLineEdit*, QString> Texts() const;
    void ShowRefusal();
    void ReleaseButtons();

    QWidget& form_;
    std::map<QLineEdit*, State> fields_;
    QLineEdit* current_ = nullptr;       ///< the box that was entered and not left yet
    std::optional<QString> refusal_;     ///< the sentence to show
    QLineEdit* refusedField_ = nullptr;  ///< the box of which it says so
    std::optional<Insertion> insertion_; ///< the last one, until a box is written anew
};
