#include "component/scaling/PolarScaling.h"

namespace {

class PolarScaling : public Scaling {
public:
    explicit PolarScaling(std::span<const ReferencePoint, 4> corners) : frame_(corners), blend_(corners) {}

    WorldPosition PixelToWorld(const PixelPosition& pixel) const override {
        return blend_.At(frame_.PartsAt({pixel.x, pixel.y}));
    }

    PixelPosition WorldToPixel(const WorldPosition& world) const override {
        const Vector pixel = frame_.PixelAt(blend_.PartsOf(world));
        return {pixel.x, pixel.y};
    }

private:
    PolarFrame frame_;
    CornerBlend blend_;
};

} // namespace

std::unique_ptr<Scaling> MakePolarScaling(std::span<const ReferencePoint, 4> corners) {
    RequireUsableValues(corners, "corner");
    return std::make_unique<PolarScaling>(corners);
}
