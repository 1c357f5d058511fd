#include "coordinates/QuorvantDatum.h"

#include "base/ComponentError.h"
#include "coordinates/DatumTable.h"

#include <algorithm>
#include <string>

namespace {

/// The names under which the nine numbers are asked for, in their order.
constexpr std::array<std::string_view, 9> PropertyNames{
    "SemiMajorAxis", "e2", "DeltaX", "DeltaY", "DeltaZ", "RotX", "RotY", "RotZ", "ScaleFactor"};

} // namespace

std::optional<double> QuorvantDatum::Property(std::string_view name) const {
    for (std::size_t i = 0; i < PropertyNames.size(); ++i) {
        if (PropertyNames[i] == name)
            return numbers_[i];
    }
    return std::nullopt;
}

QuorvantDatum MakeDatum(std::int16_t identifier) {
    const auto row = std::ranges::find(DatumTable, identifier, &DatumRow::identifier);
    if (row == DatumTable.end())
        throw ComponentError(ErrorNumber::UnknownDatum,
                             "There is no datum with the identifier " + std::to_string(identifier) + ".");
    return QuorvantDatum(row->numbers);
}
