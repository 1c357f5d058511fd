#include "component/scaling/Scaling.h"

#include "base/ComponentError.h"

#include <string>

namespace {

template <std::size_t Count>
std::span<const ReferencePoint, Count> Exactly(const std::vector<ReferencePoint>& points) {
    if (points.size() != Count)
        throw ComponentError(ErrorNumber::InvalidArgument, "The scaling needs " + std::to_string(Count) +
                                                               " reference points, not " +
                                                               std::to_string(points.size()) + ".");
    return std::span<const ReferencePoint, Count>(points.data(), Count);
}

} // namespace

std::unique_ptr<Scaling> MakeScaling(const Georeference& georeference) {
    switch (georeference.kind) {
    case ScalingKind::None:
        return nullptr;
    case ScalingKind::Linear:
        return MakeLinearScaling(Exactly<3>(georeference.points));
    case ScalingKind::Polar:
        return MakePolarScaling(Exactly<4>(georeference.points));
    }
    throw ComponentError(ErrorNumber::InvalidArgument, "There is no scaling of this kind.");
}
