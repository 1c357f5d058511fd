#include "component/scaling/Scaling.h"

#include "base/ComponentError.h"

#include <string>

namespace {

template <std::size_t Count>
std::span<const ReferencePoint, Count> Exactly(std::span<const ReferencePoint> points) {
    if (points.size() != Count)
        throw ComponentError(ErrorNumber::InvalidArgument, "The scaling needs " + std::to_string(Count) +
                                                               " reference points, not " +
                                                               std::to_string(points.size()) + ".");
    return std::span<const ReferencePoint, Count>(points.data(), Count);
}

std::unique_ptr<Scaling> ScalingThrough(ScalingKind kind, std::span<const ReferencePoint> points) {
    switch (kind) {
    case ScalingKind::Linear:
        return MakeLinearScaling(Exactly<3>(points));
    case ScalingKind::Polar:
        return MakePolarScaling(Exactly<4>(points));
    case ScalingKind::None:
        break;
    }
    throw ComponentError(ErrorNumber::InvalidArgument, "There is no scaling of this kind.");
}

} // namespace

std::unique_ptr<Scaling> MakeScaling(const Georeference& georeference) {
    if (georeference.kind == ScalingKind::None)
        return nullptr;
    return ScalingThrough(georeference.kind, georeference.points);
}

void CheckScaling(ScalingKind kind, std::span<const ReferencePoint> points) {
    ScalingThrough(kind, points);
}
