#include "component/readers/PngDecoder.h"

#include "component/readers/common/ExifOrientation.h"
#include "component/readers/common/ImageError.h"

#include <algorithm>
#include <array>
#include <functional>
#include <new>
#include <numeric>
#include <string_view>
#include <utility>

namespace {

/// Deflate never packs more than this many bytes into one: 258 bytes into two bits.
constexpr std::int64_t MaxDeflateRatio = 1032;

/// Most memory that a chunk beside the pixels may ask for.
constexpr png_alloc_size_t MaxChunkBytes = 64U << 20;

/// Whether the chunk may say how the pixels look: transparency or orientation, also under a name of which a
/// letter is damaged.
bool MayConcernPixels(std::string_view name) {
    return std::ranges::any_of(std::array<std::string_view, 2>{"tRNS", "eXIf"},
                               [name](std::string_view known) {
                                   return std::inner_product(known.begin(), known.end(), name.begin(), 0,
                                                             std::plus(), std::equal_to()) >= 3;
                               });
}

/// All chunks but those that say how the pixels look are passed over, so that a profile or text, which may
/// unpack to any size, costs nothing.
void SkipUnusedChunks(png_structp png) {
    // Four letters and a zero each, as the library wants them.
    static constexpr png_byte Names[] = "bKGD\0cHRM\0gAMA\0hIST\0iCCP\0iTXt\0oFFs\0pCAL\0pHYs\0"
                                        "sBIT\0sCAL\0sPLT\0sRGB\0tEXt\0tIME\0zTXt";
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, Names, sizeof Names / 5);
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, nullptr, 0);
}

} // namespace

void PngDecoder::OnError(png_structp png, png_const_charp message) {
    static_cast<PngDecoder*>(png_get_error_ptr(png))->exit_.Leave(message);
}

/// A chunk beside the pixels whose checksum is wrong is passed over. All other warnings (a chunk out of its
/// place, an index beyond the palette, which is padded) never change a pixel.
void PngDecoder::OnWarning(png_structp png, png_const_charp message) {
    const std::string_view text(message);
    constexpr std::size_t NameLength = 4;
    if (text.substr(std::min(NameLength, text.size())) != ": CRC error")
        return;
    auto* self = static_cast<PngDecoder*>(png_get_error_ptr(png));
    if (MayConcernPixels(text.substr(0, NameLength)))
        self->exit_.Leave(message);
    try {
        self->passedOver_.emplace_back(text.substr(0, NameLength));
    } catch (const std::bad_alloc&) { // no exception may pass through the library's frames: it goes unsaid
    }
}

PngDecoder::Objects::Objects(PngDecoder& decoder)
    : png(png_create_read_struct(PNG_LIBPNG_VER_STRING, &decoder, OnError, OnWarning)),
      info(png != nullptr ? png_create_info_struct(png) : nullptr) {
    if (info == nullptr) {
        png_destroy_read_struct(&png, nullptr, nullptr);
        throw std::bad_alloc();
    }
}

PngDecoder::Objects::~Objects() {
    png_destroy_read_struct(&png, &info, nullptr);
}

PngDecoder::PngDecoder(const std::filesystem::path& file) : file_(file), objects_(*this) {
    ReadHeader();
    RequestPixels();
}

void PngDecoder::ReadHeader() {
    const auto read = [this] {
        png_init_io(objects_.png, file_.Stream());
        png_set_crc_action(objects_.png, PNG_CRC_ERROR_QUIT, PNG_CRC_WARN_DISCARD);
        png_set_user_limits(objects_.png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
        png_set_chunk_malloc_max(objects_.png, MaxChunkBytes);
        SkipUnusedChunks(objects_.png);
        png_read_info(objects_.png, objects_.info);
    };
    if (!RunGuarded(exit_, read))
        ThrowDamaged(file_.Path(), std::feof(file_.Stream()) ? "the file ends in its header" : exit_.message);
    const png_uint_32 width = png_get_image_width(objects_.png, objects_.info);
    const png_uint_32 height = png_get_image_height(objects_.png, objects_.info);
    CheckImageSize(file_.Path(), width, height);
    info_.width = static_cast<std::int32_t>(width);
    info_.height = static_cast<std::int32_t>(height);
    depth_ = png_get_bit_depth(objects_.png, objects_.info);
    colourType_ = png_get_color_type(objects_.png, objects_.info);
    interlaced_ = png_get_interlace_type(objects_.png, objects_.info) != PNG_INTERLACE_NONE;
    CheckDataFits();
    ReadOrientation();
}

/// Refuses a size that the file cannot hold even if it packs as well as can be.
void PngDecoder::CheckDataFits() const {
    const std::int64_t bits =
        std::int64_t{png_get_channels(objects_.png, objects_.info)} * depth_ * info_.width * info_.height;
    if (bits / 8 / MaxDeflateRatio > file_.Size())
        ThrowDamaged(file_.Path(), "the file is too short for " + std::to_string(info_.width) + " x " +
                                       std::to_string(info_.height) + " pixels");
}

void PngDecoder::ReadOrientation() {
    png_uint_32 length = 0;
    png_bytep exif = nullptr;
    if (png_get_eXIf_1(objects_.png, objects_.info, &length, &exif) != 0)
        orientation_ = ExifOrientation({exif, length});
}

void PngDecoder::ReadPalette() {
    png_colorp colours = nullptr;
    int count = 0;
    if (png_get_PLTE(objects_.png, objects_.info, &colours, &count) == 0)
        ThrowDamaged(file_.Path(), "it has no palette");
    png_bytep alphas = nullptr;
    int alphaCount = 0;
    png_get_tRNS(objects_.png, objects_.info, &alphas, &alphaCount, nullptr);
    // Indices without a colour are black, as the library shows them.
    info_.palette.assign(std::size_t{1} << depth_, PaletteEntry{});
    for (std::size_t index = 0;
         index < std::min<std::size_t>(info_.palette.size(), static_cast<std::size_t>(count)); ++index) {
        const png_color& colour = colours[index];
        const bool hasAlpha = alphas != nullptr && std::cmp_less(index, alphaCount);
        info_.palette[index] = {colour.red, colour.green, colour.blue,
                                hasAlpha ? alphas[index] : std::uint8_t{255}};
    }
}

/// Chooses our format and asks the library for it.
void PngDecoder::RequestPixels() {
    const bool hasKey = png_get_valid(objects_.png, objects_.info, PNG_INFO_tRNS) != 0;
    const bool isPalette = colourType_ == PNG_COLOR_TYPE_PALETTE;
    const bool isColour = (colourType_ & PNG_COLOR_MASK_COLOR) != 0;
    const bool hasAlpha = (colourType_ & PNG_COLOR_MASK_ALPHA) != 0 || hasKey;
    if (isPalette)
        ReadPalette();
    const auto request = [=, this] {
        png_structp png = objects_.png;
        if (isPalette) {
            png_set_packing(png);
        } else {
            if (hasKey)
                png_set_tRNS_to_alpha(png);
            if (!isColour && depth_ < 8)
                png_set_expand_gray_1_2_4_to_8(png);
            if (depth_ == 16)
                png_set_scale_16(png); // rounds v / 257 exactly, unlike png_set_strip_16
            if (!isColour && hasAlpha)
                png_set_gray_to_rgb(png);
        }
        png_read_update_info(png, objects_.info);
    };
    if (!RunGuarded(exit_, request))
        ThrowDamaged(file_.Path(), exit_.message);
    info_.format = isPalette  ? PixelFormat::Palette
                   : hasAlpha ? PixelFormat::Rgba
                   : isColour ? PixelFormat::Rgb
                              : PixelFormat::Grey;
    // A row that the library makes longer than ours would be written beyond its buffer.
    if (png_get_rowbytes(objects_.png, objects_.info) !=
        static_cast<std::size_t>(info_.width) * static_cast<std::size_t>(BytesPerPixel(info_.format)))
        ThrowNotReadable(file_.Path(), "its kind of pixels is not read");
}

void PngDecoder::ReadRow(std::uint8_t* pixels, std::int32_t row) {
    if (RunGuarded(exit_, [this, pixels] { png_read_row(objects_.png, pixels, nullptr); }))
        return;
    if (std::feof(file_.Stream()))
        ThrowEndsBeforeRow(file_.Path(), row);
    ThrowDamaged(file_.Path(), exit_.message);
}

void PngDecoder::Finish() {
    if (!RunGuarded(exit_, [this] { png_read_end(objects_.png, nullptr); }))
        ThrowDamaged(file_.Path(),
                     std::feof(file_.Stream()) ? "the file ends before its end mark" : exit_.message);
}

std::vector<std::string> PngRemarks(const PngDecoder& decoder) {
    std::vector<std::string> remarks;
    for (const std::string& name : decoder.PassedOver())
        remarks.push_back("The chunk " + name + " of the image '" + decoder.Path().string() +
                          "' has a wrong checksum and was passed over.");
    return remarks;
}
