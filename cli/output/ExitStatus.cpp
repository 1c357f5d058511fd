#include "cli/output/ExitStatus.h"

#include <algorithm>
#include <array>

namespace {

struct StatusRow {
    ErrorNumber number;
    ExitStatus status;
};

// What is not listed is ExitStatus::Failed.
constexpr std::array<StatusRow, 9> StatusRows{{
    {ErrorNumber::FileDamaged, ExitStatus::FileDamaged},
    {ErrorNumber::FileChanged, ExitStatus::FileChanged},
    {ErrorNumber::ImageNotReadable, ExitStatus::ImageNotReadable},
    {ErrorNumber::ImageDamaged, ExitStatus::ImageNotReadable},
    {ErrorNumber::ImageTooLarge, ExitStatus::ImageNotReadable},
    {ErrorNumber::MapNotScaled, ExitStatus::MapNotScaled},
    {ErrorNumber::UnknownGrid, ExitStatus::Usage},
    {ErrorNumber::UnknownZone, ExitStatus::Usage},
    {ErrorNumber::UnknownDatum, ExitStatus::Usage},
}};

} // namespace

ExitStatus ExitStatusOf(ErrorNumber number, bool interrupted) {
    if (number == ErrorNumber::Cancelled && interrupted)
        return ExitStatus::Interrupted;
    const auto* row =
        std::find_if(StatusRows.begin(), StatusRows.end(),
                     [number](const StatusRow& candidate) { return candidate.number == number; });
    return row == StatusRows.end() ? ExitStatus::Failed : row->status;
}
