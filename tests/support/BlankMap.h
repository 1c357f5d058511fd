#pragma once

#include "component/AtlavexMap.h"

#include <stdexcept>

/// A map of no content. Doubles that note some of their calls are made of it: they name those, and the rest
/// answers with nothing, or complains where nothing cannot be an answer.
class BlankMap : public AtlavexMap {
public:
    std::int32_t Width() const override { return 400; }
    std::int32_t Height() const override { return 300; }
    std::string Name() const override { return {}; }
    std::string Identifier() const override { return {}; }
    void SetIdentifier(const std::string&) override {}
    const PyramidLayout& Layout() const override { throw Unexpected(); }
    PixelFormat Format() const override { throw Unexpected(); }
    const Palette& ColourTable() const override { throw Unexpected(); }
    double Zoom() const override { return 1; }
    void SetZoom(double) override {}
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
    WorldPosition PixelToWorld(const PixelPosition&) const override { throw Unexpected(); }
    PixelPosition WorldToPixel(const WorldPosition&) const override { throw Unexpected(); }
    LonLat WorldToWgs84(const WorldPosition&) const override { throw Unexpected(); }
    WorldPosition Wgs84ToWorld(const LonLat&) const override { throw Unexpected(); }
    bool RenderView(std::int32_t, std::int32_t, std::int32_t, std::int32_t,
                    std::shared_ptr<const AtlavexImage>&) override {
        return false;
    }
    void ReadPixels(const std::function<void(std::span<const std::uint8_t>, std::int32_t)>&) override {}
    void ExportTiles(const std::string&, const std::string&) override {}
    std::string GetMetadata(const std::string&) const override { return {}; }
    void SetMetadata(const std::string&, const std::string&) override {}
    void RemoveMetadata(const std::string&) override {}
    std::int32_t MetadataCount() const override { return 0; }
    std::string MetadataKeyAt(std::int32_t) const override { return {}; }
    std::string MetadataValueAt(std::int32_t) const override { return {}; }

private:
    static std::logic_error Unexpected() {
        return std::logic_error("a blank map was asked for what it has not");
    }

    Georeference georeference_;
};
