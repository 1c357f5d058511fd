#include "wizard/GridDatumCombos.h"

#include "catalogue/modCountryGadgets.h"
#include "platform/modFields.h"

#include <QComboBox>

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
