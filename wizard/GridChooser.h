#pragma once

#include "catalogue/GridChoice.h"

#include <QString>

#include <cstdint>
#include <optional>

class QComboBox;
class QLabel;
class QLineEdit;
class QWidget;

/// The fields in which a grid and its zone are chosen: the same in every form that asks for a grid.
class GridChooser {
public:
    struct Fields {
        QComboBox& ddGrid;
        QLabel& lZone;
        QComboBox& ddZone;
        QLineEdit& txtZone;
    };

    /// The fields must outlive the chooser.
    explicit GridChooser(const Fields& fields);

    /// Offers the country's grids (and datums) and selects its defaults: the first of each list, the national
    /// grid and WGS84.
    void Offer(const QString& country, QComboBox* ddDatum);
    /// Selects no grid (and no datum).
    void Unselect(QComboBox* ddDatum);
    /// Shows the zone fields that the selected grid needs.
    void GridChanged();
    /// The grid as it stands in the fields, the first zone of a zone list and its zone 0. Otherwise says what
    /// is missing, in a message before `form`, and returns nothing. Throws what MakeGrid throws.
    std::optional<GridChoice> Choose(QWidget* form);

private:
    /// Nothing for a typed zone that is no number or beyond 16 bits.
    std::optional<std::int16_t> Zone(const QString& grid) const;
    std::optional<std::int16_t> TypedZone() const;

    Fields fields_;
};

/// Replaces the grids in the list by those that the country offers and, where there is a datum list, the
/// datums in that one; in catalogue order, nothing selected, no signal emitted. Nothing is offered for a text
/// that is no country with lists, "<Custom>" included.
void FillGridDatumCombos(QComboBox& ddGrid, QComboBox* ddDatum, const QString& country);

/// Whether the grid takes its zone from a list: then the list is shown and filled (nothing selected), else it
/// is hidden and its entries stay.
bool FillZoneCombo(QComboBox& ddZone, const QString& grid);
