#include "tests/readers/JpegWriter.h"

#include <memory>
#include <stdexcept>

namespace {

int ComponentsOf(J_COLOR_SPACE space) {
    if (space == JCS_GRAYSCALE)
        return 1;
    return space == JCS_CMYK || space == JCS_YCCK ? 4 : 3;
}

J_COLOR_SPACE InputOf(J_COLOR_SPACE space) {
    if (space == JCS_GRAYSCALE)
        return JCS_GRAYSCALE;
    return ComponentsOf(space) == 4 ? JCS_CMYK : JCS_RGB;
}

/// Slopes with some texture: what JPEG is made for, and not too smooth.
std::uint8_t Sample(std::int32_t x, std::int32_t y, int component, std::int32_t width, std::int32_t height) {
    const int slope = component % 2 == 0 ? x * 200 / width : y * 200 / height;
    const int texture = (x * 7 + y * (component + 3)) % 23 + ((x / 9 + y / 5 + component) % 2) * 30;
    return static_cast<std::uint8_t>(slope + texture);
}

void Configure(jpeg_compress_struct& codec, const JpegOptions& options, std::vector<jpeg_scan_info>& scans) {
    jpeg_set_defaults(&codec);
    jpeg_set_colorspace(&codec, options.stored);
    jpeg_set_quality(&codec, options.quality, TRUE);
    codec.arith_code = options.arithmetic ? TRUE : FALSE;
    codec.restart_in_rows = options.restartRows;
    if (!options.adobeMarker)
        codec.write_Adobe_marker = FALSE;
    for (std::size_t component = 0; component < options.sampling.size(); ++component) {
        codec.comp_info[component].h_samp_factor = options.sampling[component].first;
        codec.comp_info[component].v_samp_factor = options.sampling[component].second;
    }
    if (options.progressive)
        jpeg_simple_progression(&codec);
    for (int component = 0; options.sequentialScans && component < codec.num_components; ++component)
        scans.push_back({1, {component}, 0, 63, 0, 0});
    if (!scans.empty()) {
        codec.scan_info = scans.data();
        codec.num_scans = static_cast<int>(scans.size());
    }
}

} // namespace

void WriteJpeg(const std::filesystem::path& file, std::int32_t width, std::int32_t height,
               const JpegOptions& options) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(std::fopen(file.c_str(), "wb"), std::fclose);
    if (!stream)
        throw std::runtime_error("cannot write " + file.string());
    jpeg_compress_struct codec{};
    jpeg_error_mgr errors{};
    codec.err = jpeg_std_error(&errors); // which ends the test program, and only a broken test meets it
    jpeg_create_compress(&codec);
    jpeg_stdio_dest(&codec, stream.get());
    codec.image_width = static_cast<JDIMENSION>(width);
    codec.image_height = static_cast<JDIMENSION>(height);
    codec.input_components = ComponentsOf(options.stored);
    codec.in_color_space = InputOf(options.stored);
    std::vector<jpeg_scan_info> scans;
    Configure(codec, options, scans);
    jpeg_start_compress(&codec, TRUE);
    if (!options.exif.empty())
        jpeg_write_marker(&codec, JPEG_APP0 + 1, reinterpret_cast<const JOCTET*>(options.exif.data()),
                          static_cast<unsigned>(options.exif.size()));
    std::vector<std::uint8_t> row;
    for (std::int32_t y = 0; y < height; ++y) {
        row.clear();
        for (std::int32_t x = 0; x < width; ++x)
            for (int component = 0; component < codec.input_components; ++component)
                row.push_back(Sample(x, y, component, width, height));
        JSAMPROW pointer = row.data();
        jpeg_write_scanlines(&codec, &pointer, 1);
    }
    jpeg_finish_compress(&codec);
    jpeg_destroy_compress(&codec);
}
