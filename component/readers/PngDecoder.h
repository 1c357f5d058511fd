#pragma once

#include "base/LibraryGuard.h"
#include "component/readers/common/ImageFile.h"
#include "component/tiles/RowReader.h"

#include <png.h>

#include <filesystem>
#include <string>
#include <vector>

/// A PNG file in the library's hands: its header, then its rows as they are stored, brought to one of our
/// pixel formats. Of an interlaced file the rows come pass by pass (see PngDeinterlacer).
class PngDecoder {
public:
    /// Reads up to the pixels. Throws what OpenImage throws.
    explicit PngDecoder(const std::filesystem::path& file);

    const ImageInfo& Info() const { return info_; }
    const std::filesystem::path& Path() const { return file_.Path(); }
    bool IsInterlaced() const { return interlaced_; }
    /// What the file's Exif data ask for; not applied here.
    Orientation StoredOrientation() const { return orientation_; }
    /// The names of the chunks beside the pixels that were passed over so far because their checksum is
    /// wrong.
    const std::vector<std::string>& PassedOver() const { return passedOver_; }

    /// Decodes the next stored row into a buffer of a whole row of the image, also where a pass is narrower.
    /// `row` counts from 0 and is named when the file ends here.
    void ReadRow(std::uint8_t* pixels, std::int32_t row);
    /// Reads on to the file's end mark after the last row, so that its last checksums are looked at too.
    void Finish();

private:
    /// The library's two objects; a member of its own, so that they are released when a constructor throws.
    struct Objects {
        explicit Objects(PngDecoder& decoder);
        ~Objects();
        Objects(const Objects&) = delete;
        Objects& operator=(const Objects&) = delete;

        png_structp png = nullptr;
        png_infop info = nullptr;
    };

    static void OnError(png_structp png, png_const_charp message);
    static void OnWarning(png_structp png, png_const_charp message);
    void ReadHeader();
    void CheckDataFits() const;
    void ReadPalette();
    void ReadOrientation();
    void RequestPixels();

    ImageFile file_;
    LibraryExit exit_;
    std::vector<std::string> passedOver_;
    Objects objects_;
    ImageInfo info_;
    int depth_ = 0;
    int colourType_ = 0;
    bool interlaced_ = false;
    Orientation orientation_ = Orientation::TopLeft;
};

/// A sentence for each chunk that was passed over.
std::vector<std::string> PngRemarks(const PngDecoder& decoder);
