#include "component/tiles/TileCodec.h"

#include "base/ComponentError.h"
#include "component/tiles/PngChunks.h"
#include "component/tiles/PngFilters.h"
#include "component/tiles/ScreenPixels.h"
#include "tests/tiles/AllFormats.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <libdeflate.h>
#include <png.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <stop_token>
#include <string>
#include <thread>

namespace {

using Bytes = std::vector<std::uint8_t>;

/// A tile of smooth colours under a little noise, or of nothing but noise.
struct Sample {
    Bytes pixels;
    Palette palette;
    PixelView view;

    Sample(PixelFormat format, std::int32_t width, std::int32_t height, bool noise,
           std::size_t entries = 37) {
        std::mt19937 random(static_cast<unsigned>(width * 1000 + height) + static_cast<unsigned>(format));
        const int step = BytesPerPixel(format);
        for (std::size_t i = 0; i < entries; ++i)
            palette.push_back(
                {Byte(random()), Byte(random()), Byte(random()), i % 3 == 1 ? Byte(random()) : Byte(255)});
        for (std::int32_t y = 0; y < height; ++y)
            for (std::int32_t i = 0; i < width * step; ++i) {
                const auto value =
                    noise ? Byte(random()) : Byte(static_cast<unsigned>(i / step + y) + random() % 4);
                pixels.push_back(format == PixelFormat::Palette ? Byte(value % entries) : value);
            }
        view = {pixels.data(), std::ptrdiff_t{width} * step,
                width,         height,
                format,        format == PixelFormat::Palette ? &palette : nullptr};
    }

    static std::uint8_t Byte(unsigned long value) { return static_cast<std::uint8_t>(value); }
};

Bytes Encoded(const PixelView& view) {
    TileEncoder encoder;
    const auto png = encoder.Encode(view);
    return {png.begin(), png.end()};
}

/// The pixels as red, green, blue, alpha, as libpng sees the file.
Bytes DecodedByLibpng(const Bytes& png, std::int32_t width, std::int32_t height) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    EXPECT_TRUE(png_image_begin_read_from_memory(&image, png.data(), png.size())) << image.message;
    EXPECT_EQ(image.width, static_cast<unsigned>(width));
    EXPECT_EQ(image.height, static_cast<unsigned>(height));
    image.format = PNG_FORMAT_RGBA;
    Bytes pixels(PNG_IMAGE_SIZE(image));
    EXPECT_TRUE(png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr)) << image.message;
    EXPECT_EQ(image.warning_or_error, 0U) << image.message;
    return pixels;
}

Bytes AsRgba(const Sample& sample) {
    Bytes rgba;
    const auto put = [&](PaletteEntry p) { rgba.insert(rgba.end(), {p.red, p.green, p.blue, p.alpha}); };
    const Bytes& p = sample.pixels;
    const auto step = static_cast<std::size_t>(BytesPerPixel(sample.view.format));
    for (std::size_t i = 0; i < p.size(); i += step)
        switch (sample.view.format) {
        case PixelFormat::Grey:
            put({p[i], p[i], p[i], 255});
            break;
        case PixelFormat::Palette:
            put(sample.palette[p[i]]);
            break;
        case PixelFormat::Rgb:
            put({p[i], p[i + 1], p[i + 2], 255});
            break;
        case PixelFormat::Rgba:
            put({p[i], p[i + 1], p[i + 2], p[i + 3]});
            break;
        }
    return rgba;
}

Bytes Decoded(const Bytes& png, std::int32_t width, std::int32_t height, int step) {
    TileDecoder decoder;
    Bytes rows(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) *
               static_cast<std::size_t>(step));
    decoder.Decode(png, width, height, rows.data(), std::ptrdiff_t{width} * step);
    return rows;
}

/// Decodes damaged bytes both ways; only FileDamaged may come of it.
bool IsRefused(const Bytes& png, std::int32_t width, std::int32_t height) {
    TileDecoder decoder;
    Bytes rows(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4);
    std::vector<std::uint32_t> words(rows.size() / 4);
    try {
        decoder.Decode(png, width, height, rows.data(), std::ptrdiff_t{width} * 4);
        decoder.DecodeToScreen(png, width, height, words.data(), width);
        return false;
    } catch (const ComponentError& error) {
        EXPECT_EQ(error.Number(), ErrorNumber::FileDamaged) << error.what();
        return true;
    }
}

/// The file written chunk by chunk, for what the encoder never writes.
class HandMade {
public:
    HandMade(std::uint32_t width, std::uint32_t height, std::uint8_t depth, std::uint8_t colour,
             std::uint8_t interlace = 0) {
        Bytes header;
        for (const std::uint32_t side : {width, height})
            for (int shift = 24; shift >= 0; shift -= 8)
                header.push_back(static_cast<std::uint8_t>(side >> shift));
        header.insert(header.end(), {depth, colour, 0, 0, interlace});
        writer_.Append(PngIhdr, header);
    }
    HandMade& Add(std::uint32_t type, const Bytes& data) {
        writer_.Append(type, data);
        return *this;
    }
    Bytes File() {
        writer_.Append(PngIend, {});
        png_.resize(writer_.Size());
        return png_;
    }

private:
    Bytes png_;
    PngChunkWriter writer_{png_};
};

Bytes Zlib(const Bytes& raw) {
    const std::unique_ptr<libdeflate_compressor, void (*)(libdeflate_compressor*)> packer(
        libdeflate_alloc_compressor(6), libdeflate_free_compressor);
    Bytes out(libdeflate_zlib_compress_bound(packer.get(), raw.size()));
    out.resize(libdeflate_zlib_compress(packer.get(), raw.data(), raw.size(), out.data(), out.size()));
    return out;
}

} // namespace

TEST(TileCodec, WhatIsWrittenIsReadBackByteForByteInEveryFormat) {
    for (const PixelFormat format : AllFormats)
        for (const bool noise : {false, true})
            for (const auto& [width, height] :
                 {std::pair{256, 256}, {64, 1024}, {1, 1}, {17, 3}, {1000, 64}}) {
                const Sample sample(format, width, height, noise);
                const Bytes png = Encoded(sample.view);
                EXPECT_EQ(Decoded(png, width, height, BytesPerPixel(format)), sample.pixels)
                    << width << " x " << height << ", format " << static_cast<int>(format);
            }
}

TEST(TileCodec, AnotherDecoderSeesTheSamePixels) {
    for (const PixelFormat format : AllFormats)
        for (const bool noise : {false, true}) {
            const Sample sample(format, 200, 97, noise);
            EXPECT_EQ(DecodedByLibpng(Encoded(sample.view), 200, 97), AsRgba(sample))
                << "format " << static_cast<int>(format);
        }
}

TEST(TileCodec, RowsMayLieFurtherApartThanTheyAreLong) {
    const Sample sample(PixelFormat::Rgb, 300, 200, false);
    PixelView part = sample.view;
    part.pixels += 50 * part.stride + 30 * 3;
    part.width = 128;
    part.height = 64;
    const Bytes png = Encoded(part);
    Bytes target(sample.pixels.size(), 7);
    TileDecoder().Decode(png, 128, 64, target.data() + 50 * part.stride + 30 * 3, part.stride);
    for (std::size_t i = 0; i < target.size(); ++i) {
        const std::size_t y = i / 900;
        const std::size_t x = i % 900 / 3;
        const bool inside = y >= 50 && y < 114 && x >= 30 && x < 158;
        ASSERT_EQ(target[i], inside ? sample.pixels[i] : 7) << "at " << x << ", " << y;
    }
}

TEST(TileCodec, OneEncoderServesManyTilesOfAnySize) {
    TileEncoder encoder;
    for (const std::int32_t side : {512, 64, 1024, 1, 256})
        for (const PixelFormat format : AllFormats) {
            const Sample sample(format, side, side, side == 64);
            const auto png = encoder.Encode(sample.view);
            EXPECT_EQ(Decoded({png.begin(), png.end()}, side, side, BytesPerPixel(format)), sample.pixels);
        }
}

TEST(TileCodec, APictureThatIsCompressedInStepsIsTheSameAndCanBeCancelledBetweenThem) {
    constexpr std::int32_t Side = 2000;
    const Sample sample(PixelFormat::Rgb, Side, Side, true);
    Progress progress;
    const Bytes png = EncodeInSteps(sample.view, progress);
    EXPECT_TRUE(DecodedByLibpng(png, Side, Side) == AsRgba(sample));
    EXPECT_EQ(progress.Done(), std::int64_t{Side} * (3 * Side + 1));
    Progress cancelled;
    cancelled.Cancel();
    EXPECT_THROW(EncodeInSteps(sample.view, cancelled), ComponentError);
    EXPECT_EQ(cancelled.Done(), 0);
    // From another thread, as soon as the first step is done.
    Progress running;
    std::jthread user([&running](const std::stop_token& end) {
        while (running.Done() == 0 && !end.stop_requested())
            std::this_thread::yield();
        running.Cancel();
    });
    EXPECT_THROW(EncodeInSteps(sample.view, running), ComponentError);
    EXPECT_LT(running.Done(), progress.Done());
}

TEST(TileCodec, TheFileHasOneIdatAndAPaletteNoLongerThanItsTileNeeds) {
    Sample sample(PixelFormat::Palette, 64, 64, true, 256);
    for (std::uint8_t& index : sample.pixels)
        index = static_cast<std::uint8_t>(index % 9);
    sample.palette[8].alpha = 255;
    sample.palette[7].alpha = 3;
    const Bytes png = Encoded(sample.view);
    PngChunkReader reader(png);
    std::vector<std::pair<std::uint32_t, std::size_t>> lengths;
    while (!reader.AtEnd()) {
        const PngChunk chunk = reader.Next();
        lengths.emplace_back(chunk.type, chunk.type == PngIdat ? 0 : chunk.data.size());
    }
    EXPECT_THAT(lengths,
                testing::ElementsAre(std::pair{PngIhdr, 13U}, std::pair{PngPlte, 27U}, std::pair{PngTrns, 8U},
                                     std::pair{PngIdat, 0U}, std::pair{PngIend, 0U}));
    const TileHeader header = TileDecoder::ReadHeader(png);
    EXPECT_EQ(header.palette, Palette(sample.palette.begin(), sample.palette.begin() + 9));
    EXPECT_EQ(DecodedByLibpng(png, 64, 64), AsRgba(sample));
}

TEST(TileCodec, TheHeaderIsReadWithoutThePixels) {
    const Sample sample(PixelFormat::Rgba, 80, 70, true);
    const TileHeader header = TileDecoder::ReadHeader(Encoded(sample.view));
    EXPECT_EQ(header.width, 80);
    EXPECT_EQ(header.height, 70);
    EXPECT_EQ(header.format, PixelFormat::Rgba);
    EXPECT_TRUE(header.palette.empty());
}

TEST(TileCodec, ScreenPixelsAreColoursMultipliedByAlphaAndRounded) {
    for (unsigned colour = 0; colour < 256; ++colour)
        for (unsigned alpha = 0; alpha < 256; ++alpha) {
            const auto expected = static_cast<std::uint32_t>(std::lround(colour * alpha / 255.0));
            ASSERT_EQ(ScreenPixel(0, static_cast<std::uint8_t>(colour), 0, static_cast<std::uint8_t>(alpha)),
                      alpha << 24 | expected << 8);
        }
}

TEST(TileCodec, DecodingToTheScreenGivesTheSamePixelsAsDecodingToRows) {
    for (const PixelFormat format : AllFormats) {
        const Sample sample(format, 131, 77, false);
        std::vector<std::uint32_t> words(140 * 77, 5);
        TileDecoder().DecodeToScreen(Encoded(sample.view), 131, 77, words.data(), 140);
        const Bytes rgba = AsRgba(sample);
        for (std::size_t i = 0; i < words.size(); ++i) {
            const std::size_t x = i % 140;
            const std::uint8_t* p = rgba.data() + 4 * (i / 140 * 131 + x);
            ASSERT_EQ(words[i], x < 131 ? ScreenPixel(p[0], p[1], p[2], p[3]) : 5U) << "at word " << i;
        }
    }
}

TEST(TileCodec, EveryFilterOfTheStandardIsRead) {
    std::mt19937 random(3);
    for (const std::uint8_t colour : std::initializer_list<std::uint8_t>{0, 2, 6})
        for (int firstFilter = 0; firstFilter < 5; ++firstFilter) {
            const std::size_t step = colour == 0 ? 1 : colour == 2 ? 3 : 4;
            Bytes raw;
            for (int y = 0; y < 11; ++y) {
                raw.push_back(static_cast<std::uint8_t>((firstFilter + y) % 5));
                for (std::size_t i = 0; i < 29 * step; ++i)
                    raw.push_back(static_cast<std::uint8_t>(random()));
            }
            const Bytes png = HandMade(29, 11, 8, colour).Add(PngIdat, Zlib(raw)).File();
            const Bytes rows = Decoded(png, 29, 11, static_cast<int>(step));
            const Bytes expected = DecodedByLibpng(png, 29, 11);
            for (std::size_t i = 0; i < rows.size(); ++i)
                ASSERT_EQ(rows[i], expected[i / step * 4 + i % step]) << "first filter " << firstFilter;
            std::vector<std::uint32_t> words(29 * 11);
            TileDecoder().DecodeToScreen(png, 29, 11, words.data(), 29);
            for (std::size_t i = 0; i < words.size(); ++i) {
                const std::uint8_t* p = expected.data() + 4 * i;
                ASSERT_EQ(words[i], ScreenPixel(p[0], p[1], p[2], p[3])) << "first filter " << firstFilter;
            }
        }
}

TEST(TileCodec, SeveralIdatChunksAreJoinedAndUnneededChunksPassedOver) {
    const Sample sample(PixelFormat::Grey, 64, 64, true);
    Bytes raw;
    for (std::size_t y = 0; y < 64; ++y) {
        raw.push_back(0);
        raw.insert(raw.end(), sample.pixels.begin() + static_cast<std::ptrdiff_t>(64 * y),
                   sample.pixels.begin() + static_cast<std::ptrdiff_t>(64 * y + 64));
    }
    const Bytes stream = Zlib(raw);
    const auto middle = stream.begin() + static_cast<std::ptrdiff_t>(stream.size() / 2);
    const Bytes png = HandMade(64, 64, 8, 0)
                          .Add(PngType('t', 'E', 'X', 't'), {'a', 0, 'b'})
                          .Add(PngIdat, {stream.begin(), middle})
                          .Add(PngIdat, {})
                          .Add(PngIdat, {middle, stream.end()})
                          .File();
    EXPECT_EQ(Decoded(png, 64, 64, 1), sample.pixels);
}

TEST(TileCodec, WhatIsNotStoredIsRefused) {
    const Bytes grey = Zlib(Bytes(65 * 64, 0));
    const Bytes tooShort = Zlib(Bytes(65 * 64 - 1, 0));
    const Bytes tooLong = Zlib(Bytes(65 * 64 + 1, 0));
    Bytes trailing = grey;
    trailing.push_back(0);
    const auto text = PngType('t', 'E', 'X', 't');
    const std::pair<const char*, Bytes> cases[] = {
        {"nothing", {}},
        {"signature only", {PngSignature.begin(), PngSignature.end()}},
        {"16 bits", HandMade(64, 64, 16, 0).Add(PngIdat, grey).File()},
        {"4 bits", HandMade(64, 64, 4, 0).Add(PngIdat, grey).File()},
        {"grey with alpha", HandMade(64, 64, 8, 4).Add(PngIdat, grey).File()},
        {"interlaced", HandMade(64, 64, 8, 0, 1).Add(PngIdat, grey).File()},
        {"another size", HandMade(64, 65, 8, 0).Add(PngIdat, grey).File()},
        {"no width", HandMade(0, 64, 8, 0).Add(PngIdat, grey).File()},
        {"negative width", HandMade(0x80000040, 64, 8, 0).Add(PngIdat, grey).File()},
        {"no pixels", HandMade(64, 64, 8, 0).File()},
        {"too few pixels", HandMade(64, 64, 8, 0).Add(PngIdat, tooShort).File()},
        {"too many pixels", HandMade(64, 64, 8, 0).Add(PngIdat, tooLong).File()},
        {"bytes after the stream", HandMade(64, 64, 8, 0).Add(PngIdat, trailing).File()},
        {"torn IDAT", HandMade(64, 64, 8, 0).Add(PngIdat, {}).Add(text, {}).Add(PngIdat, grey).File()},
        {"palette missing", HandMade(64, 64, 8, 3).Add(PngIdat, grey).File()},
        {"palette empty", HandMade(64, 64, 8, 3).Add(PngPlte, {}).Add(PngIdat, grey).File()},
        {"palette of 257", HandMade(64, 64, 8, 3).Add(PngPlte, Bytes(771)).Add(PngIdat, grey).File()},
        {"palette in grey", HandMade(64, 64, 8, 0).Add(PngPlte, Bytes(3)).Add(PngIdat, grey).File()},
        {"alpha in grey", HandMade(64, 64, 8, 0).Add(PngTrns, Bytes(2)).Add(PngIdat, grey).File()},
        {"unknown critical chunk",
         HandMade(64, 64, 8, 0).Add(PngType('A', 'B', 'C', 'D'), {}).Add(PngIdat, grey).File()},
        {"two headers", HandMade(64, 64, 8, 0).Add(PngIhdr, Bytes(13)).Add(PngIdat, grey).File()},
        {"unknown filter", HandMade(64, 64, 8, 0).Add(PngIdat, Zlib(Bytes(65 * 64, 5))).File()},
        {"index beyond the palette", HandMade(64, 64, 8, 3)
                                         .Add(PngPlte, Bytes(9))
                                         .Add(PngIdat, Zlib([] {
                                                  Bytes raw(65 * 64, 0);
                                                  raw.back() = 3;
                                                  return raw;
                                              }()))
                                         .File()},
    };
    for (const auto& [name, png] : cases)
        EXPECT_TRUE(IsRefused(png, 64, 64)) << name;
    EXPECT_FALSE(IsRefused(HandMade(64, 64, 8, 0).Add(PngIdat, grey).File(), 64, 64));
}

TEST(TileCodec, AHugeSizeIsRefusedBeforeMemoryIsTaken) {
    const Bytes png = HandMade(0x7FFFFFFF, 0x7FFFFFFF, 8, 6).Add(PngIdat, Bytes(1000)).File();
    EXPECT_EQ(TileDecoder::ReadHeader(png).width, 0x7FFFFFFF);
    std::uint32_t word = 0;
    EXPECT_THROW(TileDecoder().DecodeToScreen(png, 0x7FFFFFFF, 0x7FFFFFFF, &word, 0), ComponentError);
}

TEST(TileCodec, EveryTruncationIsRefused) {
    for (const PixelFormat format : AllFormats) {
        const Bytes png = Encoded(Sample(format, 64, 64, false).view);
        for (std::size_t length = 0; length < png.size(); length += length < 200 ? 1 : 37)
            EXPECT_TRUE(IsRefused({png.begin(), png.begin() + static_cast<std::ptrdiff_t>(length)}, 64, 64))
                << length;
    }
}

TEST(TileCodec, FlippedBytesGiveAnErrorOrPixelsButNothingElse) {
    std::mt19937 random(11);
    int refused = 0;
    for (const PixelFormat format : AllFormats) {
        const Bytes png = Encoded(Sample(format, 64, 64, false).view);
        for (int round = 0; round < 1500; ++round) {
            Bytes damaged = png;
            const std::size_t reach = round % 2 == 0 ? std::min<std::size_t>(180, png.size()) : png.size();
            for (auto flips = random() % 3 + 1; flips != 0; --flips)
                damaged[random() % reach] ^= static_cast<std::uint8_t>(1U << random() % 8);
            refused += IsRefused(damaged, 64, 64) ? 1 : 0;
        }
    }
    // The compressed stream carries a checksum, so that hardly a flip in it passes.
    EXPECT_GT(refused, 3000);
}

TEST(TileCodec, ViewsThatMakeNoSenseAreRefused) {
    const Sample rgb(PixelFormat::Rgb, 8, 8, false);
    const Sample palette(PixelFormat::Palette, 8, 8, true, 20);
    PixelView view = rgb.view;
    view.width = 0;
    EXPECT_THROW(Encoded(view), ComponentError);
    view = rgb.view;
    view.pixels = nullptr;
    EXPECT_THROW(Encoded(view), ComponentError);
    view = palette.view;
    view.palette = nullptr;
    EXPECT_THROW(Encoded(view), ComponentError);
    const Palette shorter(palette.palette.begin(), palette.palette.begin() + 5);
    view.palette = &shorter;
    EXPECT_THROW(Encoded(view), ComponentError) << "an index beyond the palette";
}
