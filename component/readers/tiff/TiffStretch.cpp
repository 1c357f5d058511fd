#include "component/readers/tiff/TiffStretch.h"

#include "base/NumberText.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <string_view>

namespace {

/// The tag in which the most common tools for grids of numbers name the sample that stands for "no data".
constexpr std::uint32_t NoDataTag = 42113;

std::optional<double> NoDataOf(const TiffFile& file, const TiffLayout& layout) {
    std::uint32_t count = 0;
    const char* text = nullptr;
    if (TIFFFindField(file.Handle(), NoDataTag, TIFF_ASCII) == nullptr ||
        TIFFGetField(file.Handle(), NoDataTag, &count, &text) != 1 || text == nullptr)
        return std::nullopt;
    const std::string_view all(text, count);
    const std::optional<double> value = TextToNumber(all.substr(0, all.find('\0')));
    // Samples of a single precision hold the number rounded.
    if (value && layout.number == TiffNumber::Float && layout.bits == 32)
        return static_cast<double>(static_cast<float>(*value));
    return value;
}

class Extremes {
public:
    explicit Extremes(std::optional<double> ignored = std::nullopt) : ignored_(ignored) {}

    void Add(const std::vector<double>& values) {
        for (const double value : values) {
            if (!std::isfinite(value) || value == ignored_)
                continue;
            low_ = std::min(low_, value);
            high_ = std::max(high_, value);
        }
    }
    /// Where all samples are the same, or none counts, from or to 0.
    TiffRange Range() const {
        return low_ < high_ ? TiffRange{low_, high_} : TiffRange{std::min(low_, 0.0), std::max(high_, 0.0)};
    }
    TiffRange RangeFromZero() const { return {0, std::max(high_, 0.0)}; }

private:
    std::optional<double> ignored_;
    double low_ = std::numeric_limits<double>::infinity();
    double high_ = -std::numeric_limits<double>::infinity();
};

} // namespace

TiffRanges FindTiffRanges(const TiffFile& file, const TiffLayout& layout, TiffRows& rows,
                          const std::function<void()>& pause) {
    Extremes colours(NoDataOf(file, layout));
    Extremes alpha;
    std::vector<double> values(static_cast<std::size_t>(layout.width));
    const int colourSamples = layout.colour == TiffColour::Indexed ? 0 : layout.ColourSamples();
    for (std::int32_t row = 0; row < layout.height; ++row) {
        pause();
        rows.Next(pause);
        for (int sample = 0; sample < colourSamples; ++sample) {
            LoadTiffValues(layout, SampleRunOf(layout, rows, sample), values);
            colours.Add(values);
        }
        if (layout.alpha != TiffAlpha::None) {
            LoadTiffValues(layout, SampleRunOf(layout, rows, layout.alphaSample), values);
            alpha.Add(values);
        }
    }
    const bool multiplied = layout.alpha == TiffAlpha::Associated;
    return {multiplied ? colours.RangeFromZero() : colours.Range(), alpha.RangeFromZero()};
}
