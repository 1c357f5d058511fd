#pragma once

#include "component/render/TileExport.h"
#include "coordinates/CrsText.h"

#include <string>

/// A map's coordinate reference system; empty for a map without a scaling.
CrsText CrsOf(const Georeference& georeference);

/// A map's place on the earth as the elements of a GDAL virtual raster: coordinate reference system where
/// there is one, and geotransform (linear) or ground control points (polar). Empty for a map without a
/// scaling.
std::string PlaceText(const ExportedMap& map);
