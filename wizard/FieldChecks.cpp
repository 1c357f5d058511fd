#include "wizard/FieldChecks.h"

#include "base/ComponentError.h"
#include "platform/modFields.h"
#include "platform/modMessages.h"

#include <QAbstractButton>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QLineEdit>

#include <algorithm>

namespace {

/// The form itself loses the focus, or a menu of the box has it: the user has not left the box.
bool IsStillInField(Qt::FocusReason reason) {
    return reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason ||
           reason == Qt::MenuBarFocusReason;
}

/// What an edit put in the place of what stood there.
QString InsertedPart(const QString& before, const QString& after) {
    const qsizetype shorter = std::min(before.size(), after.size());
    qsizetype start = 0;
    while (start < shorter && before[start] == after[start])
        ++start;
    qsizetype end = 0;
    while (end < shorter - start && before[before.size() - 1 - end] == after[after.size() - 1 - end])
        ++end;
    return after.mid(start, after.size() - start - end);
}

} // namespace

FieldChecks::FieldChecks(QWidget& form) : form_(form) {}

void FieldChecks::Watch(QLineEdit& field, Store store, Insert insert) {
    fields_[&field] = State{std::move(store), std::move(insert), field.text(), field.text(), {}, false};
    field.installEventFilter(this);
    connect(&field, &QLineEdit::textEdited, this,
            [this, &field](const QString& text) { Edited(field, text); });
}

void FieldChecks::Write(QLineEdit& field, const QString& text) {
    State& state = fields_.at(&field);
    state.written = text;
    state.known = text;
    state.refused.reset();
    field.setText(text);
    insertion_.reset();
}

bool FieldChecks::Settle() {
    // A box that was left by the press on a button has its say first, and alone.
    bool taken = !refusal_.has_value();
    for (auto& [field, state] : fields_) {
        if (taken && (field->hasFocus() || state.refused != field->text()))
            taken = Check(*field);
    }
    ShowRefusal();
    return taken;
}

bool FieldChecks::eventFilter(QObject* watched, QEvent* event) {
    const auto entry = fields_.find(qobject_cast<QLineEdit*>(watched));
    if (entry == fields_.end())
        return QObject::eventFilter(watched, event);
    auto& [field, state] = *entry;
    if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->matches(QKeySequence::Undo) &&
        Undo(*field))
        return true;
    if (event->type() == QEvent::FocusIn) {
        Enter(*field, static_cast<QFocusEvent*>(event)->reason());
    } else if (event->type() == QEvent::FocusOut) {
        Leave(*field, static_cast<QFocusEvent*>(event)->reason());
    } else if (event->type() == QEvent::MouseButtonRelease && state.entered) {
        // The press that gave the focus has put the cursor where it was; a drag has selected what it passed.
        state.entered = false;
        if (!field->hasSelectedText())
            field->selectAll();
    }
    return QObject::eventFilter(watched, event);
}

void FieldChecks::Enter(QLineEdit& field, Qt::FocusReason reason) {
    // The form comes back to the front with the focus where it was.
    if (current_ == &field)
        return;
    current_ = &field;
    // A click that comes while the form itself is only just getting the focus must not undo the selection.
    fields_.at(&field).entered = reason == Qt::MouseFocusReason || IsStillInField(reason);
    field.selectAll();
}

void FieldChecks::Leave(QLineEdit& field, Qt::FocusReason reason) {
    if (IsStillInField(reason))
        return;
    current_ = nullptr;
    const bool wasSaid = fields_.at(&field).refused == field.text();
    if (!form_.isVisible() || wasSaid || Check(field))
        return;
    // Later, when the press or key that led away has been dealt with: a box in its middle would leave a
    // button pressed.
    QMetaObject::invokeMethod(this, &FieldChecks::ShowRefusal, Qt::QueuedConnection);
}

bool FieldChecks::Check(QLineEdit& field) {
    State& state = fields_.at(&field);
    if (field.text() == state.written)
        return true;
    try {
        state.store();
        state.written = field.text();
        state.refused.reset();
        return true;
    } catch (const NumberError& error) {
        refusedField_ = &field;
        state.refused = field.text();
        refusal_ = error.Description();
    } catch (const ComponentError&) {
        refusedField_ = &field;
        Write(field, state.written);
        refusal_ = QString(); // nothing to be said, but the form stays open
    }
    return false;
}

void FieldChecks::Edited(QLineEdit& field, const QString& text) {
    State& state = fields_.at(&field);
    const QString before = std::exchange(state.known, text);
    state.refused.reset(); // typed anew, though it may be the same
    const QString inserted = InsertedPart(before, text);
    // What an undo brings back was there already.
    const bool cameInOnePiece = inserted.size() > 1 && !field.isRedoAvailable();
    if (!state.insert || !cameInOnePiece)
        return;
    try {
        if (!InsertInto(field, text, before))
            InsertInto(field, inserted, before);
    } catch (const ComponentError&) {
        // A value that cannot be stays in the box as typed and is refused when the box is left.
    }
}

bool FieldChecks::InsertInto(QLineEdit& field, const QString& text, const QString& before) {
    std::map<QLineEdit*, QString> texts = Texts();
    texts[&field] = before;
    Restore restore = fields_.at(&field).insert(text);
    if (!restore)
        return false;
    insertion_ = Insertion{std::move(restore), std::move(texts), Texts()};
    return true;
}

bool FieldChecks::Undo(QLineEdit& field) {
    // What was edited since is taken back first, by the box itself.
    if (!insertion_ || field.isUndoAvailable() || insertion_->after != Texts())
        return false;
    const Insertion last = *std::exchange(insertion_, std::nullopt);
    last.restore();
    // Of what was being typed the values know nothing yet.
    for (const auto& [box, text] : last.before) {
        if (box->text() == text)
            continue;
        box->setText(text);
        fields_.at(box).known = text;
    }
    field.selectAll();
    return true;
}

std::map<QLineEdit*, QString> FieldChecks::Texts() const {
    std::map<QLineEdit*, QString> texts;
    for (const auto& [field, state] : fields_)
        texts[field] = field->text();
    return texts;
}

void FieldChecks::ShowRefusal() {
    const std::optional<QString> sentence = std::exchange(refusal_, std::nullopt);
    if (!sentence || !form_.isVisible())
        return;
    ReleaseButtons();
    if (!sentence->isEmpty())
        ShowMessage(&form_, *sentence);
    // To be typed over.
    refusedField_->setFocus();
    refusedField_->selectAll();
}

void FieldChecks::ReleaseButtons() {
    // A button that is pressed just now must not be clicked by the release that follows the message.
    for (QAbstractButton* const button : form_.findChildren<QAbstractButton*>())
        button->setDown(false);
}
