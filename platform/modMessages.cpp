#include "platform/modMessages.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QGridLayout>
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

/// The text with invisible places to break a line at in the words that are too long for one; a word is what
/// stands between blanks, as in a path or in a name that was never meant to be read.
QString WithBreaks(const QString& text) {
    constexpr qsizetype LongestWord = 40; // letters; some 400 pixels at the usual size
    constexpr qsizetype Piece = 8;
    QString broken;
    qsizetype wordStart = 0;
    for (qsizetype i = 0; i <= text.size(); ++i) {
        if (i < text.size() && !text.at(i).isSpace())
            continue;
        const QString word = text.mid(wordStart, i - wordStart);
        qsizetype from = 0;
        while (word.size() > LongestWord && word.size() - from > Piece) {
            const qsizetype end = Between(word, from + Piece);
            broken += word.mid(from, end - from) + QChar(0x200B);
            from = end;
        }
        broken += word.mid(from);
        if (i < text.size())
            broken += text.at(i);
        wordStart = i + 1;
    }
    return broken;
}

/// The normal pointer for as long as a box is open, over the hourglass of a command that asks in its middle.
class NormalPointer {
public:
    NormalPointer() { QApplication::setOverrideCursor(Qt::ArrowCursor); }
    ~NormalPointer() { QApplication::restoreOverrideCursor(); }
    NormalPointer(const NormalPointer&) = delete;
    NormalPointer& operator=(const NormalPointer&) = delete;
};

/// A box that shows its text as plain text, whole.
class PlainBox : public QMessageBox {
public:
    PlainBox(QWidget* parent, Icon icon, const QString& text, StandardButtons buttons)
        : QMessageBox(icon, Title, Fitting(text), buttons, parent) {
        setObjectName(QStringLiteral("MessageBox"));
        setTextFormat(Qt::PlainText);
        if (const QString breakable = WithBreaks(QMessageBox::text()); breakable != QMessageBox::text())
            Show(breakable);
    }

private:
    /// A second label takes the place of the box's own, which keeps the text as it is: for those who ask the
    /// box for it, copy it or have it read to them.
    void Show(const QString& breakable) {
        constexpr int Widest = 480; // pixels; a box with a text of many short words is about as wide
        auto* const own = findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
        auto* const grid = qobject_cast<QGridLayout*>(layout());
        if (own == nullptr || grid == nullptr)
            return;
        int row = 0, column = 0, rows = 0, columns = 0;
        grid->getItemPosition(grid->indexOf(own), &row, &column, &rows, &columns);
        auto* const shown = new QLabel(breakable, this);
        shown->setObjectName(QStringLiteral("BrokenText"));
        shown->setTextFormat(Qt::PlainText);
        shown->setWordWrap(true);
        shown->setAlignment(own->alignment());
        shown->setIndent(own->indent());
        shown->setContentsMargins(own->contentsMargins());
        shown->setMinimumWidth(Widest);
        grid->addWidget(shown, row, column, rows, columns);
        own->hide();
    }
};

QMessageBox::StandardButton Ask(QWidget* parent, QMessageBox::Icon icon, const QString& text,
                                QMessageBox::StandardButtons buttons, QMessageBox::StandardButton preset,
                                QMessageBox::StandardButton escape) {
    const NormalPointer pointer;
    PlainBox box(parent, icon, text, buttons);
    box.setDefaultButton(preset);
    box.setEscapeButton(escape);
    return static_cast<QMessageBox::StandardButton>(box.exec());
}

} // namespace

void ShowMessage(QWidget* parent, const QString& text) {
    Ask(parent, QMessageBox::Information, text, QMessageBox::Ok, QMessageBox::Ok, QMessageBox::Ok);
}

void OpenMessage(QWidget* parent, const QString& text) {
    auto* const box = new PlainBox(parent != nullptr ? parent : QApplication::activeWindow(),
                                   QMessageBox::Information, text, QMessageBox::Ok);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
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
