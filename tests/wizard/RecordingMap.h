#pragma once

#include "component/AtlavexMap.h"

#include <string>
#include <vector>

/// A map that notes which scaling calls reach it, and can refuse one of them.
class RecordingMap : public AtlavexMap {
public:
    std::vector<std::string> calls; ///< name and arguments, joined by blanks
    std::string refuse;             ///< the call of this name fails with "No."
    Orientation turn = Orientation::TopLeft;

    void SetMapDatum(const QuorvantDatum::Numbers& datum) override;
    void SetMapGrid(std::int32_t method, std::int32_t zone, const std::array<double, 7>& values) override;
    void SetGridIdentifier(std::int32_t identifier) override;
    void SetZone(const std::string& zone) override;
    void SetScalingThreePoints(const ReferencePoint& first, const ReferencePoint& second,
                               const ReferencePoint& third) override;
    void SetScalingCorners(const ReferencePoint& upperLeft, const ReferencePoint& lowerLeft,
                           const ReferencePoint& upperRight, const ReferencePoint& lowerRight) override;

    std::int32_t Width() const override { return 400; }
    std::int32_t Height() const override { return 300; }
    std::string Name() const override { return {}; }
    std::string Identifier() const override { return {}; }
    void SetIdentifier(const std::string&) override {}
    const PyramidLayout& Layout() const override { throw Unused(); }
    PixelFormat Format() const override { throw Unused(); }
    const Palette& ColourTable() const override { throw Unused(); }
    Orientation ImageTurn() const override { return turn; }
    double Zoom() const override { return 1; }
    void SetZoom(double) override {}
    bool IsScaled() const override { return false; }
    bool HasGrid() const override { return false; }
    const Georeference& MapGeoreference() const override { return georeference_; }
    WorldPosition PixelToWorld(const PixelPosition&) const override { throw Unused(); }
    PixelPosition WorldToPixel(const WorldPosition&) const override { throw Unused(); }
    LonLat WorldToWgs84(const WorldPosition&) const override { throw Unused(); }
    WorldPosition Wgs84ToWorld(const LonLat&) const override { throw Unused(); }
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
    static std::logic_error Unused() { return std::logic_error("not needed by the wizard"); }
    void Note(const std::string& name, const std::string& arguments);

    Georeference georeference_;
};

/// As a call's text shows it: the numbers in their shortest form, joined by blanks.
std::string JoinNumbers(std::span<const double> numbers);
