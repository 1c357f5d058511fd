#include "platform/modMessages.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QRegularExpression>
#include <QVBoxLayout>

#include <limits>

namespace {

const auto Title = QStringLiteral("Quorvant Studio");

// What a box has room for on a small screen, with its buttons.
constexpr qsizetype MostCharacters = 1500;
constexpr qsizetype MostLines = 30;

/// The position, or the next one when a pair of surrogates would be parted there.
qsizetype Between(const QString& text, qsizetype position) {
    return text.at(position).isLowSurrogate() ? position + 1 : position;
}

/// A text that a box can show: a name of a megabyte would stand still for seconds and push the buttons off
/// the screen. What is said about it stands before and behind it.
QString Fitting(const QString& text) {
    static const QRegularExpression lineEnd(QStringLiteral("\r\n|[\n\v\f\r\u0085\u2028\u2029]"));
    const auto ellipsis = QStringLiteral("\u2026");
    QString shown = text;
    if (shown.size() > MostCharacters)
        shown = shown.left(Between(shown, MostCharacters - MostCharacters / 4)) + ellipsis +
                shown.mid(Between(shown, shown.size() - MostCharacters / 4));
    const QStringList lines = shown.split(lineEnd);
    if (lines.size() <= MostLines)
        return shown;
    return (lines.first(MostLines - MostLines / 4) + QStringList{ellipsis} + lines.last(MostLines / 4))
        .join(u'\n');
}

/// The normal pointer for as long as a box is open, over the hourglass of a command that asks in its middle.
class NormalPointer {
public:
    NormalPointer() { QApplication::setOverrideCursor(Qt::ArrowCursor); }
    ~NormalPointer() { QApplication::restoreOverrideCursor(); }
    NormalPointer(const NormalPointer&) = delete;
    NormalPointer& operator=(const NormalPointer&) = delete;
};

QMessageBox::StandardButton Ask(QWidget* parent, QMessageBox::Icon icon, const QString& text,
                                QMessageBox::StandardButtons buttons, QMessageBox::StandardButton preset,
                                QMessageBox::StandardButton escape) {
    const NormalPointer pointer;
    QMessageBox box(icon, Title, Fitting(text), buttons, parent);
    box.setObjectName(QStringLiteral("MessageBox"));
    box.setTextFormat(Qt::PlainText);
    box.setDefaultButton(preset);
    box.setEscapeButton(escape);
    return static_cast<QMessageBox::StandardButton>(box.exec());
}

} // namespace

void ShowMessage(QWidget* parent, const QString& text) {
    Ask(parent, QMessageBox::Information, text, QMessageBox::Ok, QMessageBox::Ok, QMessageBox::Ok);
}

void ShowError(QWidget* parent, const QString& text) {
    Ask(parent, QMessageBox::Critical, text, QMessageBox::Ok, QMessageBox::Ok, QMessageBox::Ok);
}

bool AskYesNo(QWidget* parent, const QString& question) {
    return Ask(parent, QMessageBox::Question, question, QMessageBox::Yes | QMessageBox::No, QMessageBox::No,
               QMessageBox::No) == QMessageBox::Yes;
}

Answer AskYesNoCancel(QWidget* parent, const QString& question) {
    switch (Ask(parent, QMessageBox::Question, question,
                QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::Yes,
                QMessageBox::Cancel)) {
    case QMessageBox::Yes:
        return Answer::Yes;
    case QMessageBox::No:
        return Answer::No;
    default:
        return Answer::Cancel;
    }
}

std::optional<QString> AskText(QWidget* parent, const QString& prompt) {
    const NormalPointer pointer;
    QDialog box(parent);
    box.setObjectName(QStringLiteral("InputBox"));
    box.setWindowTitle(Title);
    auto* const label = new QLabel(prompt, &box);
    label->setTextFormat(Qt::PlainText);
    auto* const field = new QLineEdit(&box);
    field->setObjectName(QStringLiteral("txtInput"));
    field->setMaxLength(std::numeric_limits<int>::max()); // a text that is pasted shall not be cut
    label->setBuddy(field);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &box);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &box, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &box, &QDialog::reject);
    auto* const layout = new QVBoxLayout(&box);
    layout->addWidget(label);
    layout->addWidget(field);
    layout->addWidget(buttons);
    if (box.exec() != QDialog::Accepted)
        return std::nullopt;
    return field->text();
}
