#pragma once

#include "component/AtlavexMap.h"
#include "component/library/MetadataObject.h"
#include "component/library/Operations.h"
#include "component/render/ViewRenderer.h"
#include "component/scaling/Scaling.h"
#include "component/storage/TileDirectory.h"

#include <initializer_list>

/// A map of a library.
class MapObject final : public MetadataObject<AtlavexMap, MapState, ErrorNumber::NoSuchMap> {
public:
    /// `views` is shared by the library's maps.
    MapObject(std::shared_ptr<MapState> state, std::shared_ptr<Operations> operations,
              std::shared_ptr<ViewMemory> views, int threads);

    std::int32_t Width() const override { return Held().record.width; }
    std::int32_t Height() const override { return Held().record.height; }
    std::string Identifier() const override { return Held().record.identifier; }
    void SetIdentifier(const std::string& identifier) override { Held().record.identifier = identifier; }
    const PyramidLayout& Layout() const override {
        Held();
        return layout_;
    }
    PixelFormat Format() const override { return Held().record.format; }
    const Palette& ColourTable() const override { return Held().record.palette; }
    Orientation ImageTurn() const override { return Held().turn; }
    double Zoom() const override { return Held().record.zoom; }
    void SetZoom(double zoom) override;

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
    void DropPendingSystem() override { pending_ = {}; }
    bool IsScaled() const override { return Held().record.georeference.kind != ScalingKind::None; }
    bool HasGrid() const override { return Held().record.georeference.grid.has_value(); }
    const Georeference& MapGeoreference() const override { return Held().record.georeference; }

    WorldPosition PixelToWorld(const PixelPosition& pixel) const override;
    PixelPosition WorldToPixel(const WorldPosition& world) const override;
    LonLat WorldToWgs84(const WorldPosition& world) const override;
    WorldPosition Wgs84ToWorld(const LonLat& position) const override;

    bool RenderView(std::int32_t left, std::int32_t top, std::int32_t width, std::int32_t height,
                    std::shared_ptr<const AtlavexImage>& image) override;
    void ForgetView() override;
    bool ViewIsDraft() const override { return renderer_ && renderer_->IsDraft(); }
    bool ViewIsObstructed() const override { return renderer_ && renderer_->IsObstructed(); }
    void ReadPixels(
        const std::function<void(std::span<const std::uint8_t> rows, std::int32_t count)>& band) override;
    void ExportTiles(const std::string& folder, const std::string& extension) override;

    /// Looks at the tiles where they lie now; gives the file that they lay in before, if that is another.
    std::shared_ptr<Container> FollowTiles();
    /// The library holds the map no more, and the map no file.
    void Detach();

private:
    /// Made from the georeference when they are first needed: the cursor read-out asks at every mouse move.
    struct Converters {
        std::unique_ptr<Scaling> scaling;
        std::unique_ptr<GridProjection> projection;
        std::unique_ptr<DatumShift> shift;
    };
    template <typename Step>
    void WithPending(const Step& step);
    void SetScaling(ScalingKind kind, std::initializer_list<ReferencePoint> points);
    Converters& WithScaling() const;
    Converters& WithDatum() const;
    TileReader NewReader() const;
    void RequireIdle() const;

    PyramidLayout layout_;
    std::shared_ptr<Operations> operations_;
    std::shared_ptr<ViewMemory> views_;
    int threads_;
    Georeference pending_; ///< what the next scaling takes; never has a scaling itself
    mutable Converters converters_;
    std::shared_ptr<Container> shown_; ///< the container that reader and renderer look at
    std::unique_ptr<TileReader> reader_;
    std::unique_ptr<ViewRenderer> renderer_;
};
