#include "tests/wizard/ReadOutTruth.h"

#include <QRegularExpression>
#include <QString>

#include <gtest/gtest.h>

#include <cmath>

double Tolerance(int slider) {
    return slider < 0 ? std::nearbyint(0.5 / std::exp(slider / 10.0)) : 0;
}

std::pair<double, double> ReadOutNumbers(const std::string& status) {
    static const QRegularExpression grid(QStringLiteral(
        "^\\(meters\\) Easting: (-?\\d+(?:\\.\\d{1,2})?) Northing: (-?\\d+(?:\\.\\d{1,2})?)$"));
    static const QRegularExpression degrees(
        QStringLiteral("^Longitude: (\\d+\\.\\d{7}) ([EW]) Latitude: (\\d+\\.\\d{7}) ([NS])$"));
    const QString text = QString::fromStdString(status);
    if (const auto match = grid.match(text); match.hasMatch())
        return {match.captured(1).toDouble(), match.captured(2).toDouble()};
    const auto match = degrees.match(text);
    EXPECT_TRUE(match.hasMatch()) << status;
    const double longitude = match.captured(1).toDouble();
    const double latitude = match.captured(3).toDouble();
    return {match.captured(2) == QStringLiteral("W") ? -longitude : longitude,
            match.captured(4) == QStringLiteral("S") ? -latitude : latitude};
}
