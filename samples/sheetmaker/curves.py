"""Lines: rounding off, cutting, measuring, and the contour lines of a field."""

import numpy as np
from osgeo import gdal, ogr

gdal.UseExceptions()
ogr.UseExceptions()


def rounded(points, rounds=2, calm=2):
    """Return a line with its corners rounded off; both ends stay where they are, so joined lines stay joined.

    calm is how often each point first moves to the mean of itself and its neighbours: it takes the steps out of a
    line that was found cell by cell.
    """
    points = np.asarray(points, float)
    for _ in range(calm):
        if len(points) > 2:
            points[1:-1] = (points[:-2] + 2 * points[1:-1] + points[2:]) / 4
    for _ in range(rounds):
        if len(points) < 3:
            break
        near = 0.75 * points[:-1] + 0.25 * points[1:]
        far = 0.25 * points[:-1] + 0.75 * points[1:]
        middle = np.stack([near, far], 1).reshape(-1, 2)
        points = np.concatenate([points[:1], middle[1:-1], points[-1:]])
    return points


def lengths(points):
    """Return the distance along a line at each of its points."""
    steps = np.hypot(*np.diff(points, axis=0).T)
    return np.concatenate([[0.0], np.cumsum(steps)])


def at_distance(points, distance):
    """Return (x, y, direction) on a line; direction is the angle in degrees counter-clockwise, y pointing down."""
    along = lengths(points)
    distance = float(np.clip(distance, 0.5, along[-1] - 0.5))
    x, y = (np.interp([distance, distance - 8, distance + 8], along, points[:, k]) for k in (0, 1))
    return x[0], y[0], float(np.degrees(np.arctan2(-(y[2] - y[1]), x[2] - x[1])))


def upright(angle):
    """Return the direction turned by 180 degrees where a text along it would stand on its head."""
    return (angle + 90) % 180 - 90


def evenly(points, spacing):
    """Return the line with its points moved to equal distances of about spacing."""
    along = lengths(points)
    places = np.linspace(0, along[-1], max(2, int(along[-1] / spacing) + 1))
    return np.column_stack([np.interp(places, along, points[:, k]) for k in (0, 1)])


def runs_inside(points, width, height, margin=0):
    """Return the stretches of a line whose points lie inside the map body."""
    x, y = points[:, 0], points[:, 1]
    inside = (x > margin) & (x < width - margin) & (y > margin) & (y < height - margin)
    edges = np.flatnonzero(np.diff(np.concatenate([[0], inside.astype(int), [0]])))
    return [points[a:b] for a, b in edges.reshape(-1, 2) if b - a > 1]


def contour_lines(raster, interval=None, levels=None):
    """Return [(level, points)] of a raster's contour lines in body pixels."""
    rows, columns = raster.values.shape
    source = gdal.GetDriverByName("MEM").Create("", columns, rows, 1, gdal.GDT_Float64)
    # The band's values belong to pixel centres, so its corner lies half a step before the first node.
    corner = raster.origin - raster.step / 2
    source.SetGeoTransform((corner, raster.step, 0, corner, 0, raster.step))
    source.GetRasterBand(1).WriteArray(raster.values)
    store = ogr.GetDriverByName("Memory").CreateDataSource("contours")
    layer = store.CreateLayer("contours")
    layer.CreateField(ogr.FieldDefn("level", ogr.OFTReal))
    fixed = list(levels or [])
    gdal.ContourGenerate(source.GetRasterBand(1), interval or 0, 0, fixed, 0, 0, layer, -1, 0)
    lines = []
    for feature in layer:
        lines.append((feature.GetField("level"), np.array(feature.GetGeometryRef().GetPoints())[:, :2]))
    return lines
