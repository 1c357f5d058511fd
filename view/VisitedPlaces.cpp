#include "view/VisitedPlaces.h"

void VisitedPlaces::Keep(const std::shared_ptr<AtlavexMap>& map, const QPointF& upperLeft) {
    std::erase_if(places_, [](const auto& place) { return place.first.expired(); });
    places_.insert_or_assign(map, upperLeft);
}

QPointF VisitedPlaces::Of(const std::shared_ptr<AtlavexMap>& map) const {
    const auto place = places_.find(map);
    return place != places_.end() ? place->second : QPointF();
}
