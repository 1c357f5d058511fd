#include "platform/FilterText.h"

#include <QRegularExpression>

namespace {

QString QtPatterns(const QString& patterns) {
    QStringList words;
    for (const QString& pattern : patterns.split(u';')) {
        const QString word = pattern.trimmed();
        if (!word.isEmpty())
            words.append(word == QStringLiteral("*.*") ? QStringLiteral("*") : word);
    }
    return words.join(u' ');
}

/// "Atlavex" of the one pattern "*.Atlavex"; nothing of "*.*" and of "*.tif *.tiff".
QString EndingOfPattern(const QString& pattern) {
    static const QRegularExpression oneEnding(QStringLiteral("^\\*\\.([^*?.\\[\\] ]+)$"));
    return oneEnding.match(pattern).captured(1);
}

} // namespace

FilterText::FilterText(const QString& text) {
    const QStringList parts = text.split(u'|');
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        descriptions_.append(parts[i].trimmed());
        endings_.append(EndingOfPattern(QtPatterns(parts[i + 1])));
        qtFilters_.append(descriptions_.last() + QStringLiteral(" (") + QtPatterns(parts[i + 1]) + u')');
    }
}
