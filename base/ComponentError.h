#pragma once

#include <stdexcept>
#include <string>

/// What went wrong, as a number that stays the same from version to version (listed in docs/errors.md).
enum class ErrorNumber {
    Failed = 1,                 ///< anything that has no number of its own
    Cancelled = 10,             ///< the user pressed Cancel
    OutOfMemory = 11,           ///< the memory asked for was not to be had
    InvalidArgument = 12,       ///< an argument that no call may pass
    Overflow = 13,              ///< a number does not fit the 16 or 32 bits it must fit
    FileNotFound = 20,          ///< no file of this name
    FileNotReadable = 21,       ///< permissions, a folder or device in place of a file, or an I/O error
    FileNotWritable = 22,       ///< permissions, read-only medium, or an I/O error
    DiskFull = 23,              ///< no space left, or a quota or size limit
    NotALibrary = 24,           ///< not a map library (or someone else's database)
    NewerVersion = 25,          ///< a map library of a later format version
    FileDamaged = 26,           ///< a map library whose content does not match its digests
    FileChanged = 27,           ///< another program changed or replaced the file since it was loaded
    FileLocked = 28,            ///< another program is writing to the file just now
    ImageNotReadable = 40,      ///< no image, or of a kind that is not read
    ImageDamaged = 41,          ///< an image that breaks off or contradicts itself
    ImageTooLarge = 42,         ///< more pixels than the program accepts
    PointsOnALine = 60,         ///< three reference points that span no triangle
    CornersImpossible = 61,     ///< four corners that span no sheet
    ValueNotFinite = 62,        ///< a coordinate that is no finite number
    MapNotScaled = 63,          ///< a coordinate was asked of a map without a scaling
    WorldfileInvalid = 64,      ///< not six finite numbers
    UnknownGrid = 80,           ///< an identifier that stands for no grid
    UnknownDatum = 81,          ///< an identifier that stands for no datum
    UnknownZone = 82,           ///< a zone that the grid does not have
    OutsideArea = 83,           ///< a position at which the grid or datum is not defined
    ProjectionNotComputed = 84, ///< a map of a projection method that this program does not compute
    ShiftUnknown = 85,          ///< a map whose shift to WGS84 nobody knows
    NoSuchMap = 100,            ///< no map under this reference or position
    NoSuchIcon = 101,           ///< no icon under this reference or position
    InvalidTileSize = 102,      ///< a tile size outside 64 to 1024 pixels
};

/// The one exception of the engine: a stable number and one sentence fit for the user, which names the
/// file (or map and tile) and the reason. A wrong encryption key is never reported by an exception.
class ComponentError : public std::runtime_error {
public:
    ComponentError(ErrorNumber number, const std::string& description);

    ErrorNumber Number() const noexcept { return number_; }
    /// The number as it is shown to the user and written to scripts.
    int Code() const noexcept { return static_cast<int>(number_); }
    std::string Description() const { return what(); }

private:
    ErrorNumber number_;
};
