#include "cli/output/ScalingRemarks.h"

#include "cli/output/Output.h"

std::vector<ScalingRemark> RemarksOn(const AtlavexMap& map) {
    return ReviewScaling(map.MapGeoreference(), map.Width(), map.Height());
}

std::string AsLine(const AtlavexMap& map, const ScalingRemark& remark) {
    return "Map '" + map.Name() + "': " + remark.sentence;
}

void PrintRemarksOn(const AtlavexMap& map) {
    for (const ScalingRemark& remark : RemarksOn(map))
        PrintMessage(AsLine(map, remark));
}
