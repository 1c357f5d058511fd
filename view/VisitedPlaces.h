#pragma once

#include <QPointF>

#include <map>
#include <memory>

class AtlavexMap;

/// Where each map of a library was last looked at: the image position, in pixels of the map, at the viewer's
/// upper left. Maps that are gone take their places with them, so another library begins afresh.
class VisitedPlaces {
public:
    void Keep(const std::shared_ptr<AtlavexMap>& map, const QPointF& upperLeft);
    /// The map's upper left where it was not looked at yet.
    QPointF Of(const std::shared_ptr<AtlavexMap>& map) const;

private:
    std::map<std::weak_ptr<AtlavexMap>, QPointF, std::owner_less<>> places_;
};
