#pragma once

#include "tests/support/BlankMap.h"

#include <string>
#include <vector>

/// A map that notes which scaling calls reach it, and can refuse one of them.
class RecordingMap : public BlankMap {
public:
    std::vector<std::string> calls; ///< name and arguments, joined by blanks
    std::string refuse;             ///< the call of this name fails with "No."
    Orientation turn = Orientation::TopLeft;

    void SetMapDatum(const QuorvantDatum::Numbers& datum) override;
    void SetMapGrid(std::int32_t method, std::int32_t zone, const std::array<double, 7>& values) override;
    void SetGridIdentifier(std::int32_t identifier) override;
    void SetZone(const std::string& zone) override;
    void SetScalingThreePoints(const ReferencePoint& first, const ReferencePoint& second,
                               const ReferencePoint& third) override;
    void SetScalingCorners(const ReferencePoint& upperLeft, const ReferencePoint& lowerLeft,
                           const ReferencePoint& upperRight, const ReferencePoint& lowerRight) override;

    Orientation ImageTurn() const override { return turn; }

private:
    void Note(const std::string& name, const std::string& arguments);
};

/// As a call's text shows it: the numbers in their shortest form, joined by blanks.
std::string JoinNumbers(std::span<const double> numbers);
