#pragma once

#include <QPointF>

#include <map>
#include <memory>

class AtlavexMap;

/// Where each map of a library was last looked at: the image position, in pixels of the map, at the viewer's
/// upper left. Maps that are gone take their places with them, so another library begins afresh.
class VisitedPlaces {
public:
    void Keep(const std::shared_ptr<AtlavexMap>& map, const QPointF& upperLeft) {
        std::erase_if(places_, [](const auto& place) { return place.first.expired(); });
        places_.insert_or_assign(map, upperLeft);
    }
    /// The map's upper left where it was not looked at yet.
    QPointF Of(const std::shared_ptr<AtlavexMap>& map) const {
        const auto place = places_.find(map);
        return place != places_.end() ? place->second : QPointF();
    }

private:
    std::map<std::weak_ptr<AtlavexMap>, QPointF, std::owner_less<>> places_;
};
