#pragma once

#include "coordinates/QuorvantDatum.h"
#include "coordinates/QuorvantGrid.h"

#include <optional>

class QWidget;

// Datums and grids that another program defines: a service of the session bus, "NarvoquistRemote.clsRemote",
// whose calls show that program's own dialog (docs/remote-coordinates.md). The service is looked for at every
// call and started by the bus where it can be.
//
// The calls return when the other program's dialog is closed, however long that takes; until then `form` is
// disabled. Nothing is returned, without delay and without a message, when there is no bus or no such
// service, when the user chose nothing there, or when the answer is not what the interface says.

std::optional<QuorvantDatum> GetCustomDatum(QWidget& form);
std::optional<QuorvantGrid> GetCustomGrid(QWidget& form);
