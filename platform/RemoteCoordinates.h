#pragma once

#include "coordinates/QuorvantDatum.h"
#include "coordinates/QuorvantGrid.h"

#include <optional>

class QDialog;

// Datums and grids that another program defines: a service of the session bus, "NarvoquistRemote.clsRemote",
// whose calls show that program's own dialog (docs/remote-coordinates.md). The service is looked for at every
// call and started by the bus where it can be.
//
// The calls return when the other program's dialog is closed, however long that takes, or when `form` is
// left; until then all its controls but "bCancel" are disabled. Nothing is returned, without a message, when
// the form was left, when there is no bus or no such service, when the user chose nothing there, or when the
// answer is not what the interface says; without delay, but for a bus that is there and does not answer.

std::optional<QuorvantDatum> GetCustomDatum(QDialog& form);
std::optional<QuorvantGrid> GetCustomGrid(QDialog& form);
