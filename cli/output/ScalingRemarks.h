#pragma once

#include "component/AtlavexMap.h"
#include "component/ScalingReview.h"

/// What is unlikely in the map's scaling.
std::vector<ScalingRemark> RemarksOn(const AtlavexMap& map);

/// A remark as one line: "Map 'Sheet 12': ...".
std::string AsLine(const AtlavexMap& map, const ScalingRemark& remark);

/// Tells all of them as messages: to whoever has just scaled the map.
void PrintRemarksOn(const AtlavexMap& map);
