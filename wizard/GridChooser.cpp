#include "wizard/GridChooser.h"

#include "base/CheckedNumbers.h"
#include "catalogue/modCountryGadgets.h"
#include "coordinates/GridTable.h"
#include "platform/modFields.h"
#include "platform/modMessages.h"
#include "wizard/NameList.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>

#include <cmath>

GridChooser::GridChooser(const Fields& fields) : fields_(fields) {
    // A zone's text begins with its code, which hardly anybody knows.
    fields_.ddZone.setView(new NameList(&fields_.ddZone));
}

void GridChooser::Offer(const QString& country, QComboBox* ddDatum) {
    FillGridDatumCombos(fields_.ddGrid, ddDatum, country);
    fields_.ddGrid.setCurrentIndex(0);
    if (ddDatum != nullptr)
        ddDatum->setCurrentIndex(0);
    GridChanged();
}

void GridChooser::Unselect(QComboBox* ddDatum) {
    if (ddDatum != nullptr)
        ddDatum->setCurrentIndex(-1);
    fields_.ddGrid.setCurrentIndex(-1);
    GridChanged();
}

void GridChooser::GridChanged() {
    const QString grid = ComboText(fields_.ddGrid);
    const bool typed = GridHasNumericZone(grid.toStdString());
    fields_.txtZone.setVisible(typed);
    fields_.lZone.setVisible(typed);
    if (FillZoneCombo(fields_.ddZone, grid))
        fields_.ddZone.setCurrentIndex(0);
}

std::optional<GridChoice> GridChooser::Choose(QWidget* form) {
    const QString gridText = ComboText(fields_.ddGrid);
    const std::string grid = gridText.toStdString();
    const std::optional<std::int16_t> zone = Zone(gridText);
    const std::int16_t identifier = GridIdentifier(grid, zone.value_or(0));
    if (identifier == 0) {
        ShowMessage(form, QStringLiteral("No grid selected!"));
        return std::nullopt;
    }
    if (GridHasNumericZone(grid) && (!zone || *zone < LowestTypedZone || *zone > HighestTypedZone)) {
        ShowMessage(form, QStringLiteral("Invalid Zone. Should be between 1 and 60"));
        fields_.txtZone.setFocus();
        fields_.txtZone.selectAll();
        return std::nullopt;
    }
    return GridChoice{identifier, *zone, MakeGrid(identifier, *zone)};
}

std::optional<std::int16_t> GridChooser::Zone(const QString& grid) const {
    if (ZoneKindOf(grid.toStdString()) == ZoneKind::StatePlane)
        return CheckedNarrow<std::int16_t>(StatePlaneCode(ComboText(fields_.ddZone).toStdString()));
    // The zone of a zone list is not read: the first zone of the list is the one that reaches the map.
    return fields_.txtZone.isHidden() ? std::int16_t{0} : TypedZone();
}

std::optional<std::int16_t> GridChooser::TypedZone() const {
    // The number is read as if a zero stood before it, so that a sign or a blank there makes it none.
    const QString text = fields_.txtZone.text();
    const QString start = text.left(1);
    if (!start.isEmpty() && !start.front().isDigit() && start != QLocale::system().decimalPoint())
        return std::nullopt;
    try {
        return CheckedRound<std::int16_t>(std::floor(GetNumber(fields_.txtZone)));
    } catch (const NumberError&) {
        return std::nullopt;
    } catch (const ComponentError&) {
        return std::nullopt;
    }
}

void FillGridDatumCombos(QComboBox& ddGrid, QComboBox* ddDatum, const QString& country) {
    const std::string text = country.toStdString();
    FillCombo(ddGrid, GridsOf(text));
    if (ddDatum != nullptr)
        FillCombo(*ddDatum, DatumsOf(text));
}

bool FillZoneCombo(QComboBox& ddZone, const QString& grid) {
    const std::vector<std::string> zones = ZonesOf(grid.toStdString());
    ddZone.setVisible(!zones.empty());
    if (zones.empty())
        return false;
    FillCombo(ddZone, zones);
    return true;
}
