"""Compares coordinate reference systems as WKT with those of the EPSG registry by pyproj.

stdin: a JSON list of {"wkt": text, "epsg": code, "point": [longitude, latitude] on the system's own datum}
stdout: a JSON list of {"name", "expectedName", "code", "axes", "expectedAxes", "difference"}; the difference of
the two systems' coordinates at the point, in their own units.
"""

import json
import math
import sys

import pyproj


def unbound(wkt):
    crs = pyproj.CRS.from_wkt(wkt)
    return crs.source_crs if crs.is_bound else crs


def coordinates(crs, point):
    return point if crs.is_geographic else pyproj.Proj(crs)(*point)


def main():
    answers = []
    for case in json.load(sys.stdin):
        given, expected = unbound(case["wkt"]), pyproj.CRS.from_epsg(case["epsg"])
        answers.append({
            "name": given.name,
            "expectedName": expected.name,
            "code": given.to_json_dict()["id"]["code"],
            "axes": [axis.direction for axis in given.axis_info],
            "expectedAxes": [axis.direction for axis in expected.axis_info],
            "difference": math.dist(coordinates(given, case["point"]), coordinates(expected, case["point"])),
        })
    json.dump(answers, sys.stdout)


main()
