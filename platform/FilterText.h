#pragma once

#include <QString>
#include <QStringList>

/// A filter list "description|patterns|description|patterns" in the words of Qt's file dialog, which has to
/// be told to hide the patterns: they stand in the description already.
class FilterText {
public:
    explicit FilterText(const QString& text);

    /// One entry a filter, "description (patterns)"; patterns are separated by blanks, and "*.*", which Qt
    /// would take to mean names with a point, is "*".
    const QStringList& QtFilters() const { return qtFilters_; }
    /// The place, from 0, of the filter that the dialog calls its selected one; -1 when it is none of these.
    qsizetype PositionOf(const QString& selected) const { return descriptions_.indexOf(selected); }
    /// The ending that all files of this filter have, without its point: "Atlavex" for "*.Atlavex"; empty for
    /// a filter of several patterns or of none.
    QString EndingOf(const QString& selected) const { return endings_.value(PositionOf(selected)); }

private:
    QStringList descriptions_; ///< as the dialog shows and returns them: without blanks around
    QStringList qtFilters_;
    QStringList endings_;
};
