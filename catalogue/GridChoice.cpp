#include "catalogue/GridChoice.h"

#include "base/ComponentError.h"
#include "base/NumberText.h"
#include "catalogue/modCountryGadgets.h"
#include "coordinates/GridTable.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace {

/// A whole number of digits only.
std::optional<std::int32_t> WholeNumber(std::string_view text) {
    return text.starts_with('-') ? std::nullopt : TextToWholeNumber(text);
}

[[noreturn]] void ThrowZone(const std::string& grid, const std::string& zone, const std::string& expected) {
    const std::string fault = zone.empty() ? "The grid \"" + grid + "\" needs a zone"
                                           : "The grid \"" + grid + "\" has no zone \"" + zone + "\"";
    throw ComponentError(ErrorNumber::UnknownZone, fault + ": " + expected + ".");
}

constexpr std::size_t CodeLength = 4; ///< of a state-plane zone's text; a blank and the name follow

std::optional<std::int32_t> FindStatePlaneCode(const std::vector<std::string>& items,
                                               const std::string& text) {
    const auto number = WholeNumber(text);
    for (const std::string& item : items) {
        const std::int32_t code = StatePlaneCode(item);
        if (item == text || item.substr(CodeLength + 1) == text || code == number)
            return code;
    }
    return std::nullopt;
}

/// The 1-based place of a zone in its list.
std::optional<std::int32_t> ListPlace(const std::vector<std::string>& items, const std::string& text) {
    const auto item = std::ranges::find(items, text);
    if (item != items.end())
        return static_cast<std::int32_t>(item - items.begin()) + 1;
    const auto place = WholeNumber(text);
    const bool inList = place && *place >= 1 && static_cast<std::size_t>(*place) <= items.size();
    return inList ? place : std::nullopt;
}

std::string Quoted(const std::vector<std::string>& items) {
    std::string text;
    for (const std::string& item : items)
        text += (text.empty() ? "\"" : ", \"") + item + "\"";
    return text;
}

GridChoice TypedZone(const std::string& grid, const std::string& zone) {
    const auto number = WholeNumber(zone);
    if (!number || *number < LowestTypedZone || *number > HighestTypedZone)
        ThrowZone(grid, zone, "a whole number from 1 to 60 is expected");
    const auto identifier = GridIdentifier(grid, 0);
    return {identifier, *number, MakeGrid(identifier, *number)};
}

GridChoice StatePlaneZone(const std::string& grid, const std::string& zone,
                          const std::vector<std::string>& items) {
    const auto code = FindStatePlaneCode(items, zone);
    if (!code)
        ThrowZone(grid, zone,
                  "a state-plane code or name such as " + Quoted({items.front()}) +
                      " is expected; all are listed by: atlavex catalogue");
    const auto identifier = GridIdentifier(grid, 0);
    return {identifier, *code, MakeGrid(identifier, *code)};
}

GridChoice ListZone(const std::string& grid, const std::string& zone, const std::vector<std::string>& items) {
    const auto place = ListPlace(items, zone);
    if (!place)
        ThrowZone(grid, zone,
                  "one of " + Quoted(items) + " or its place from 1 to " + std::to_string(items.size()) +
                      " is expected");
    const auto identifier = GridIdentifier(grid, static_cast<std::int16_t>(*place - 1));
    return {identifier, *place, MakeGrid(identifier, *place)};
}

} // namespace

std::int32_t StatePlaneCode(const std::string& zoneText) {
    const auto code = WholeNumber(std::string_view(zoneText).substr(0, CodeLength));
    if (!code)
        throw ComponentError(ErrorNumber::UnknownZone, "\"" + zoneText + "\" is no state-plane zone.");
    return *code;
}

GridChoice ChooseGrid(const std::string& gridText, const std::string& zoneText) {
    const auto identifier = GridIdentifier(gridText, 0);
    if (identifier == 0)
        throw ComponentError(ErrorNumber::UnknownGrid,
                             "There is no grid \"" + gridText + "\"; all are listed by: atlavex catalogue.");
    switch (ZoneKindOf(gridText)) {
    case ZoneKind::Typed:
        return TypedZone(gridText, zoneText);
    case ZoneKind::StatePlane:
        return StatePlaneZone(gridText, zoneText, ZonesOf(gridText));
    case ZoneKind::List:
        return ListZone(gridText, zoneText, ZonesOf(gridText));
    case ZoneKind::None:
        break;
    }
    if (!zoneText.empty())
        ThrowZone(gridText, zoneText, "it is a single grid without zones");
    return {identifier, 0, MakeGrid(identifier, 0)};
}
