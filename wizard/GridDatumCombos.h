#pragma once

#include <QString>

class QComboBox;

/// Replaces the grids in the list by those that the country offers and, where there is a datum list, the
/// datums in that one; in catalogue order, nothing selected, no signal emitted. Nothing is offered for a text
/// that is no country with lists, "<Custom>" included.
void FillGridDatumCombos(QComboBox& ddGrid, QComboBox* ddDatum, const QString& country);

/// Whether the grid takes its zone from a list: then the list is shown and filled (nothing selected), else it
/// is hidden and its entries stay.
bool FillZoneCombo(QComboBox& ddZone, const QString& grid);
