"""Opens an exported map.vrt in GDAL: read_mosaic.py FILE OUT.

OUT gets the pixels, band after band in each pixel. Says on stdout, one a line: width, height, bands, the sizes of
the overviews, the geotransform (or "-"), the ground control points, and where the reference system puts the
middle of the map in WGS84 (or "-").
"""
import sys

import numpy
from osgeo import gdal, osr

gdal.UseExceptions()
osr.UseExceptions()
# A system that it knows by its code GDAL would move by the registry's shift; what the text itself says is looked at.
gdal.SetConfigOption("OGR_CT_PREFER_OFFICIAL_SRS_DEF", "NO")
mosaic = gdal.Open(sys.argv[1])
pixels = numpy.atleast_3d(mosaic.ReadAsArray() if mosaic.RasterCount == 1
                          else numpy.moveaxis(mosaic.ReadAsArray(), 0, -1))
with open(sys.argv[2], "wb") as file:
    file.write(numpy.ascontiguousarray(pixels).tobytes())
band = mosaic.GetRasterBand(1)
print(mosaic.RasterXSize, mosaic.RasterYSize, mosaic.RasterCount)
for i in range(band.GetOverviewCount()):
    overview = band.GetOverview(i)
    overview.ReadAsArray()
    print("overview", overview.XSize, overview.YSize)
transform = mosaic.GetGeoTransform(can_return_null=True)
print("transform", *(repr(number) for number in transform or []))
for point in mosaic.GetGCPs():
    print("point", repr(point.GCPPixel), repr(point.GCPLine), repr(point.GCPX), repr(point.GCPY))
system = mosaic.GetSpatialRef() or (mosaic.GetGCPSpatialRef() if mosaic.GetGCPCount() else None)
if system and transform:
    x, y = mosaic.RasterXSize / 2, mosaic.RasterYSize / 2
    wgs84 = osr.SpatialReference()
    wgs84.ImportFromEPSG(4326)
    wgs84.SetAxisMappingStrategy(osr.OAMS_TRADITIONAL_GIS_ORDER)
    east = transform[0] + x * transform[1] + y * transform[2]
    north = transform[3] + x * transform[4] + y * transform[5]
    longitude, latitude, _ = osr.CoordinateTransformation(system, wgs84).TransformPoint(east, north)
    print("middle", repr(longitude), repr(latitude))
print("system", system.GetName() if system else "-")
