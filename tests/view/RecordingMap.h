#pragma once

#include "component/AtlavexMap.h"
#include "component/PixelImage.h"

#include <vector>

/// A map that notes how it is asked for its parts and answers with one colour. It is there for what is said
/// of the number and order of calls, and for sizes that no test can make.
class RecordingMap final : public AtlavexMap {
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

    std::int32_t Width() const override { return layout_.Width(); }
    std::int32_t Height() const override { return layout_.Height(); }
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
        if (!changed)
            return false;
        Bitmap bitmap(width, height);
        bitmap.pixels.assign(bitmap.pixels.size(), Colour);
        image = std::make_shared<PixelImage>(std::move(bitmap));
        return true;
    }

    std::string Name() const override { return {}; }
    std::string Identifier() const override { return {}; }
    void SetIdentifier(const std::string&) override {}
    const PyramidLayout& Layout() const override { return layout_; }
    PixelFormat Format() const override { return PixelFormat::Rgb; }
    const Palette& ColourTable() const override { return palette_; }
    void SetMapDatum(const QuorvantDatum::Numbers&) override {}
    void SetMapGrid(std::int32_t, std::int32_t, const std::array<double, 7>&) override {}
    void SetGridIdentifier(std::int32_t) override {}
    void SetZone(const std::string&) override {}
    void SetScalingThreePoints(const ReferencePoint&, const ReferencePoint&, const ReferencePoint&) override {
    }
    void SetScalingCorners(const ReferencePoint&, const ReferencePoint&, const ReferencePoint&,
                           const ReferencePoint&) override {}
    bool IsScaled() const override { return false; }
    bool HasGrid() const override { return false; }
    const Georeference& MapGeoreference() const override { return georeference_; }
    WorldPosition PixelToWorld(const PixelPosition&) const override { return {}; }
    PixelPosition WorldToPixel(const WorldPosition&) const override { return {}; }
    LonLat WorldToWgs84(const WorldPosition&) const override { return {}; }
    WorldPosition Wgs84ToWorld(const LonLat&) const override { return {}; }
    void ReadPixels(const std::function<void(std::span<const std::uint8_t>, std::int32_t)>&) override {}
    void ExportTiles(const std::string&, const std::string&) override {}
    std::string GetMetadata(const std::string&) const override { return {}; }
    void SetMetadata(const std::string&, const std::string&) override {}
    void RemoveMetadata(const std::string&) override {}
    std::int32_t MetadataCount() const override { return 0; }
    std::string MetadataKeyAt(std::int32_t) const override { return {}; }
    std::string MetadataValueAt(std::int32_t) const override { return {}; }

private:
    void Fail() const {
        if (fails)
            throw ComponentError(ErrorNumber::NoSuchMap, "The map has been removed.");
    }

    PyramidLayout layout_;
    Palette palette_;
    Georeference georeference_;
    double zoom_ = 1.0;
};
