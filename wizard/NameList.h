#pragma once

#include <QElapsedTimer>
#include <QListView>
#include <QString>

/// The entries of a drop-down list, of which one is found by typing any part of it, also while the list is
/// closed. The beginning of a word goes before what stands in the middle of one; blanks do not count, for the
/// first one opens the list.
class NameList : public QListView {
    Q_OBJECT

public:
    using QListView::QListView;

    void keyboardSearch(const QString& typed) override;

private:
    int RowOf(const QString& sought, int from) const;

    QString sought_;
    QElapsedTimer sinceLastKey_;
};
