#pragma once

#include <QString>

// What the path of an image file says about the map or icon to be made of it.

/// The file's name up to its first "."; without one the whole name.
QString ProposedName(const QString& fileName);

/// Where the worldfile of a map image would stand: beside a file whose extension is exactly "tif" or "tiff",
/// with the extension "tfw". Empty for any other; the case counts: users are promised no question for "TIF".
QString WorldfileFor(const QString& fileName);

/// Whether a plain file of this path exists that is not hidden.
bool IsPlainFile(const QString& path);
