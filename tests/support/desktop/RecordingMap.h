#pragma once

#include "component/AtlavexMap.h"

#include <string>
#include <vector>

/// A map that notes how it is asked for views, which it answers with one colour, and which calls scale it. It
/// is there for what is said of the number and order of calls, for sizes that no test can make, and for
/// failures; it has no other content, and complains where nothing cannot be an answer.
class RecordingMap : public AtlavexMap {
public:
    struct View {
        std::int32_t left = 0, top = 0, width = 0, height = 0;
        double zoom = 0;
        bool operator==(const View&) const = default;
    };

    static constexpr std::uint32_t Colour = 0xFF336699;

    explicit RecordingMap(std::int32_t width = 400, std::int32_t height = 300)
        : layout_(width, height, 256, 256) {}

    // What it was asked.
    std::vector<View> views;
    int zoomsWritten = 0;
    std::vector<std::string> calls; ///< those that scale: name and arguments, joined by blanks

    // What it answers.
    bool fails = false;      ///< every question about views is answered by an error
    bool changed = true;     ///< what it says of its views
    bool obstructed = false; ///< its drafts cannot be made final, and no answer is better than the last
    int drafts = 0;          ///< so many of the next views are not final
    std::string refuse;      ///< the scaling call of this name fails with "No."
    Orientation turn = Orientation::TopLeft;

    std::int32_t Width() const override { return layout_.Width(); }
    std::int32_t Height() const override { return layout_.Height(); }
    const PyramidLayout& Layout() const override { return layout_; }
    PixelFormat Format() const override { return PixelFormat::Rgb; }
    const Palette& ColourTable() const override { return palette_; }
    double Zoom() const override { return zoom_; }
    void SetZoom(double zoom) override;
    bool RenderView(std::int32_t left, std::int32_t top, std::int32_t width, std::int32_t height,
                    std::shared_ptr<const AtlavexImage>& image) override;
    bool ViewIsDraft() const override { return isDraft_; }
    bool ViewIsObstructed() const override { return obstructed && isDraft_; }

    void SetMapDatum(const QuorvantDatum::Numbers& datum) override;
    void SetMapGrid(std::int32_t method, std::int32_t zone, const std::array<double, 7>& values) override;
    void SetGridIdentifier(std::int32_t identifier) override;
    void SetZone(const std::string& zone) override;
    void SetSystemIdentity(const SystemIdentity& system) override;
    void SetEnteredPoints(const std::vector<MeasuredPoint>& points) override;
    void SetCheckSets(const std::vector<CheckSet>& sets) override;
    void SetScalingThreePoints(const ReferencePoint& first, const ReferencePoint& second,
                               const ReferencePoint& third) override;
    void SetScalingCorners(const ReferencePoint& upperLeft, const ReferencePoint& lowerLeft,
                           const ReferencePoint& upperRight, const ReferencePoint& lowerRight) override;
    Orientation ImageTurn() const override { return turn; }

    // What it has not.
    std::string Name() const override { return {}; }
    std::string Identifier() const override { return {}; }
    void SetIdentifier(const std::string&) override {}
    bool IsScaled() const override { return false; }
    bool HasGrid() const override { return false; }
    const Georeference& MapGeoreference() const override { return georeference_; }
    WorldPosition PixelToWorld(const PixelPosition&) const override { throw Unexpected(); }
    PixelPosition WorldToPixel(const WorldPosition&) const override { throw Unexpected(); }
    LonLat WorldToWgs84(const WorldPosition&) const override { throw Unexpected(); }
    WorldPosition Wgs84ToWorld(const LonLat&) const override { throw Unexpected(); }
    void ReadPixels(const std::function<void(std::span<const std::uint8_t>, std::int32_t)>&) override {}
    void ExportTiles(const std::string&, const std::string&) override {}
    std::string GetMetadata(const std::string&) const override { return {}; }
    void SetMetadata(const std::string&, const std::string&) override {}
    void RemoveMetadata(const std::string&) override {}
    std::int32_t MetadataCount() const override { return 0; }
    std::string MetadataKeyAt(std::int32_t) const override { return {}; }
    std::string MetadataValueAt(std::int32_t) const override { return {}; }

private:
    static std::logic_error Unexpected();
    void FailIfToldTo() const;
    void Note(const std::string& name, const std::string& arguments);

    PyramidLayout layout_;
    Palette palette_;
    Georeference georeference_;
    double zoom_ = 1.0;
    bool isDraft_ = false;
};

/// The call that gives a map the datum WGS84.
inline constexpr const char* Wgs84Datum = "SetMapDatum 6378137 0.006694379990141 0 0 0 0 0 0 0";

/// As a call's text shows it: the numbers in their shortest form, joined by blanks.
std::string JoinNumbers(std::span<const double> numbers);
