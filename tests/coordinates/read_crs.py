"""Reads coordinate reference systems as WKT by pyproj and by GDAL.

stdin: a JSON list of {"wkt": text, "points": [[WGS84 longitude, latitude, x, y], ...]}
stdout: a JSON list of {"pyproj": d, "gdal": d}, the largest difference from x, y that either reader finds.
"""

import json
import math
import sys

import pyproj
from osgeo import gdal, osr

osr.UseExceptions()
# A system that it knows by its code GDAL would move by the registry's shift; what the text itself says is looked at.
gdal.SetConfigOption("OGR_CT_PREFER_OFFICIAL_SRS_DEF", "NO")


def pyproj_transform(wkt):
    transformer = pyproj.Transformer.from_crs("EPSG:4326", pyproj.CRS.from_wkt(wkt), always_xy=True)
    return transformer.transform


def gdal_transform(wkt):
    source = osr.SpatialReference()
    source.ImportFromEPSG(4326)
    target = osr.SpatialReference()
    target.ImportFromWkt(wkt)
    for system in (source, target):
        system.SetAxisMappingStrategy(osr.OAMS_TRADITIONAL_GIS_ORDER)
    transformation = osr.CoordinateTransformation(source, target)
    return lambda x, y: transformation.TransformPoint(x, y)[:2]


def largest_difference(transform, points):
    worst = 0.0
    for longitude, latitude, x, y in points:
        found_x, found_y = transform(longitude, latitude)
        worst = max(worst, math.hypot(found_x - x, found_y - y))
    return worst


def main():
    answers = []
    for case in json.load(sys.stdin):
        answers.append({
            "pyproj": largest_difference(pyproj_transform(case["wkt"]), case["points"]),
            "gdal": largest_difference(gdal_transform(case["wkt"]), case["points"]),
        })
    json.dump(answers, sys.stdout)


main()
