"""TIFF files as GDAL writes them."""

from osgeo import gdal

gdal.UseExceptions()


def in_memory(*channels):
    """The channels as a data set of GDAL."""
    height, width = channels[0].shape
    memory = gdal.GetDriverByName("MEM").Create("", width, height, len(channels))
    for i, channel in enumerate(channels):
        memory.GetRasterBand(i + 1).WriteArray(channel)
    return memory


def save_gdal(file, memory, *options):
    gdal.GetDriverByName("GTiff").CreateCopy(file, memory, options=options)
