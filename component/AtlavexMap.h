#pragma once

#include "component/AtlavexImage.h"
#include "component/Georeference.h"
#include "component/Metadata.h"
#include "component/Orientation.h"
#include "component/PixelFormat.h"
#include "component/PyramidLayout.h"
#include "coordinates/Projection.h"

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

/// One raster map of a library. Pixels are unzoomed unless said otherwise; the integer pixel (x, y) is the
/// centre of that pixel, (0, 0) the upper left one.
class AtlavexMap : public AtlavexImage, public Metadata {
public:
    /// The "name" metadata; when that is empty, the name given when the map was added.
    virtual std::string Name() const = 0;
    /// The map's own identifier, normally a GUID text; any text is taken.
    virtual std::string Identifier() const = 0;
    virtual void SetIdentifier(const std::string& identifier) = 0;

    virtual const PyramidLayout& Layout() const = 0;
    virtual PixelFormat Format() const = 0;
    virtual const Palette& ColourTable() const = 0; ///< empty unless Format() is Palette
    /// How the image file's stored pixels, which a worldfile counts, were turned when the map was added;
    /// TopLeft for a map that was loaded.
    virtual Orientation ImageTurn() const { return Orientation::TopLeft; }

    /// Screen pixels per image pixel; 1.0 at first. Kept for the life of the object, stored with the map.
    virtual double Zoom() const = 0;
    /// InvalidArgument unless finite and above 0.
    virtual void SetZoom(double zoom) = 0;

    // Scaling. ------------------------------------------------------------------------------------------
    //
    // A georeference is taken whole or not at all: datum, grid, identifier, zone, the system's identity, the
    // points as entered and check sets are pending until one of the two scalings takes them together with its
    // points, in place of all that the map had. What was not
    // given is not kept from before. A call that fails drops what is pending; the map stays as it was.

    /// The datum of the map's coordinates; drops a pending grid and what names it. ValueNotFinite for numbers
    /// that are none, UnknownDatum for numbers that describe no ellipsoid or no shift.
    virtual void SetMapDatum(const QuorvantDatum::Numbers& datum) = 0;
    /// The grid of the map's easting/northing coordinates: two integers, then seven doubles. ValueNotFinite,
    /// UnknownGrid, UnknownZone.
    virtual void SetMapGrid(std::int32_t method, std::int32_t zone, const std::array<double, 7>& values) = 0;
    /// The catalogue's identifier of the grid (0 for a grid that is not of the catalogue) and its zone as a
    /// decimal string, for display only; without a grid they are not kept.
    virtual void SetGridIdentifier(std::int32_t identifier) = 0;
    virtual void SetZone(const std::string& zone) = 0;
    /// What a registry calls datum and grid. InvalidArgument for a shift that is unknown and yet named.
    /// A scaling refuses an unknown shift (InvalidArgument) unless its datum is an ellipsoid alone.
    virtual void SetSystemIdentity(const SystemIdentity& system) = 0;
    /// What the scaling was made from, where it is fitted to more points than define it, or to parts of
    /// pixels. ValueNotFinite; InvalidArgument for more than MostMeasuredPoints.
    virtual void SetEnteredPoints(const std::vector<MeasuredPoint>& points) = 0;
    /// Points to compare the scaling with. ValueNotFinite; InvalidArgument for more than MostCheckSets, or
    /// one of more than MostMeasuredPoints.
    virtual void SetCheckSets(const std::vector<CheckSet>& sets) = 0;
    /// Affine scaling through three points. PointsOnALine, ValueNotFinite.
    virtual void SetScalingThreePoints(const ReferencePoint& first, const ReferencePoint& second,
                                       const ReferencePoint& third) = 0;
    /// Polar scaling. CornersImpossible, ValueNotFinite.
    virtual void SetScalingCorners(const ReferencePoint& upperLeft, const ReferencePoint& lowerLeft,
                                   const ReferencePoint& upperRight, const ReferencePoint& lowerRight) = 0;
    /// Forgets what is pending, for a caller whose own work fails between these calls.
    virtual void DropPendingSystem() {}

    virtual bool IsScaled() const = 0;
    /// True: coordinates are easting/northing in metres; false: longitude/latitude in degrees.
    virtual bool HasGrid() const = 0;
    virtual const Georeference& MapGeoreference() const = 0;

    /// The coordinate of a pixel, which may lie beside the map: easting/northing or longitude/latitude, see
    /// HasGrid. Not finite where a polar map's scaling is not defined. MapNotScaled.
    virtual WorldPosition PixelToWorld(const PixelPosition& pixel) const = 0;
    /// The inverse. MapNotScaled, OutsideArea.
    virtual PixelPosition WorldToPixel(const WorldPosition& world) const = 0;
    /// The map's own coordinate as WGS84 longitude/latitude, and back, through the datum's nine numbers.
    /// A map without a datum is taken as WGS84. OutsideArea; ShiftUnknown where nobody knows the shift,
    /// ProjectionNotComputed for a grid of a file whose method this program does not compute.
    virtual LonLat WorldToWgs84(const WorldPosition& world) const = 0;
    virtual WorldPosition Wgs84ToWorld(const LonLat& position) const = 0;

    // Pixels. -------------------------------------------------------------------------------------------

    /// The part of the map that a viewer shows at the map's zoom. `left` and `top` count zoomed pixels from
    /// the map's upper left corner and may lie beside the map, where the view stays transparent; `width` and
    /// `height` are the viewer's size, 1 to 16384 screen pixels (else InvalidArgument). The flag is false,
    /// and `image` left alone, when nothing differs from the last answer. Damaged tiles are hatched.
    virtual bool RenderView(std::int32_t left, std::int32_t top, std::int32_t width, std::int32_t height,
                            std::shared_ptr<const AtlavexImage>& image) = 0;
    /// The next view is an answer in any case: for a viewer that has shown something else since the last one.
    virtual void ForgetView() {}
    /// True when the last view was drawn from a coarser level, because its own tiles take longer than the
    /// library's patience with views. The same view asked for again brings them, in steps that long, and
    /// answers with a better image when they are all there.
    virtual bool ViewIsDraft() const { return false; }
    /// True when that view is a draft because its tiles cannot be read now, as while another program holds
    /// the file: asked for again at once it will hardly be better.
    virtual bool ViewIsObstructed() const { return false; }

    /// All pixels of the map, bit for bit, in bands of one tile height from the top, in Format(). The
    /// callback gets the rows (width × BytesPerPixel bytes each, without gaps) and their number. Throws
    /// FileDamaged, naming map and tile. Raises the library's progress events.
    virtual void
    ReadPixels(const std::function<void(std::span<const std::uint8_t> rows, std::int32_t count)>& band) = 0;

    /// Writes every tile of every level into the folder (which must exist): z/x/y.png with z = 0 the smallest
    /// level, tiles.json, map.vrt and index.html. `extension` must be ".png". Raises the library's progress
    /// events. A folder that holds another map's tiles is left alone (InvalidArgument). FileNotWritable,
    /// DiskFull, FileDamaged, Cancelled; what is written by then stays, and tiles.json says that it is not
    /// all.
    virtual void ExportTiles(const std::string& folder, const std::string& extension) = 0;
};
