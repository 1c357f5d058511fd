#pragma once

#include "base/ComponentError.h"
#include "component/library/PixelImage.h"
#include "tests/support/BlankMap.h"

#include <vector>

/// A map that notes how it is asked for its parts and answers with one colour. It is there for what is said
/// of the number and order of calls, and for sizes that no test can make.
class RecordingMap final : public BlankMap {
public:
    struct Call {
        std::int32_t left = 0, top = 0, width = 0, height = 0;
        double zoom = 0;
        bool operator==(const Call&) const = default;
    };

    static constexpr std::uint32_t Colour = 0xFF336699;

    RecordingMap(std::int32_t width, std::int32_t height) : layout_(width, height, 256, 256) {}

    std::vector<Call> calls;
    bool fails = false;  ///< every question is answered by an error
    bool changed = true; ///< what it says of its answers
    int zoomsWritten = 0;
    bool obstructed = false; ///< its drafts cannot be made final, and no answer is better than the last
    int drafts = 0;          ///< so many of the next answers are not final

    std::int32_t Width() const override { return layout_.Width(); }
    std::int32_t Height() const override { return layout_.Height(); }
    const PyramidLayout& Layout() const override { return layout_; }
    PixelFormat Format() const override { return PixelFormat::Rgb; }
    const Palette& ColourTable() const override { return palette_; }
    double Zoom() const override { return zoom_; }
    void SetZoom(double zoom) override {
        Fail();
        ++zoomsWritten;
        zoom_ = zoom;
    }
    bool RenderView(std::int32_t left, std::int32_t top, std::int32_t width, std::int32_t height,
                    std::shared_ptr<const AtlavexImage>& image) override {
        calls.push_back({left, top, width, height, zoom_});
        Fail();
        if (!changed || (obstructed && isDraft_))
            return false;
        Bitmap bitmap(width, height);
        bitmap.pixels.assign(bitmap.pixels.size(), Colour);
        image = std::make_shared<PixelImage>(std::move(bitmap));
        isDraft_ = drafts > 0 && drafts-- > 0;
        return true;
    }
    bool ViewIsDraft() const override { return isDraft_; }
    bool ViewIsObstructed() const override { return obstructed && isDraft_; }

private:
    void Fail() const {
        if (fails)
            throw ComponentError(ErrorNumber::NoSuchMap, "The map has been removed.");
    }

    PyramidLayout layout_;
    Palette palette_;
    double zoom_ = 1.0;
    bool isDraft_ = false;
};
