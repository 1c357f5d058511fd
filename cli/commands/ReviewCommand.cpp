#include "cli/commands/CommandSet.h"
#include "cli/commands/Selection.h"
#include "cli/output/Output.h"
#include "cli/output/ScalingRemarks.h"

#include <nlohmann/json.hpp>

namespace {

struct ReviewOptions {
    LibraryChoice library;
    std::string map; ///< empty: all
    bool strict = false;
    bool json = false;
};

std::vector<std::int32_t> Positions(AtlavexLibrary& library, const std::string& map) {
    if (!map.empty())
        return {SelectPosition(library, ObjectKind::Map, map)};
    std::vector<std::int32_t> positions;
    for (std::int32_t position = 1; position <= library.MapCount(); ++position)
        positions.push_back(position);
    return positions;
}

nlohmann::ordered_json AsJson(std::int32_t position, const AtlavexMap& map,
                              const std::vector<ScalingRemark>& remarks) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const ScalingRemark& remark : remarks)
        list.push_back({{"doubt", NameOf(remark.doubt)}, {"sentence", remark.sentence}});
    return {{"position", position},
            {"name", map.Name()},
            {"identifier", map.Identifier()},
            {"scaled", map.IsScaled()},
            {"remarks", list}};
}

void RequireScaled(const AtlavexMap& map) {
    if (!map.IsScaled())
        throw ComponentError(ErrorNumber::MapNotScaled, "The map '" + map.Name() + "' is not scaled.");
}

ExitStatus RunReview(const ReviewOptions& options) {
    const OpenedLibrary library(options.library, Access::Read);
    nlohmann::ordered_json maps = nlohmann::ordered_json::array();
    bool isDoubted = false;
    for (const std::int32_t position : Positions(*library, options.map)) {
        const auto map = library->GetMap(library->MapIdAt(position));
        if (!options.map.empty())
            RequireScaled(*map);
        const auto remarks = RemarksOn(*map);
        isDoubted = isDoubted || !remarks.empty();
        if (options.json)
            maps.push_back(AsJson(position, *map, remarks));
        for (const ScalingRemark& remark : remarks)
            if (!options.json)
                Print(Printable(AsLine(*map, remark)) + "\n");
    }
    if (options.json)
        PrintJson({{"file", options.library.file}, {"maps", maps}});
    return options.strict && isDoubted ? ExitStatus::Failed : ExitStatus::Done;
}

} // namespace

void AddReviewCommand(CommandSet& commands) {
    auto options = std::make_shared<ReviewOptions>();
    CLI::App& command =
        commands.Add({"review", "FILE [MAP] [--strict] [--json] [--key-file K | --key-env NAME]",
                      "Say what is unlikely in the maps' scaling.",
                      "Looks at how each scaled map, or the one that is named, lies on the earth and says "
                      "what is unlikely: that it "
                      "is mirrored, that its axes are exchanged, that feet were given for metres, that it "
                      "lies far from where its "
                      "grid or datum is used or in the other hemisphere, that its pixels are far from square "
                      "or sheared on the "
                      "ground, that its points are too near each other or on one line. One line for each "
                      "remark, and nothing when "
                      "all is likely. Damage is the matter of atlavex verify.",
                      "atlavex review alps.Atlavex\natlavex review alps.Atlavex \"Sheet 12\" --strict || "
                      "echo look again"});
    AddLibrary(command, options->library);
    AddOptional(command, "MAP", options->map,
                "The map: position from 1, name or identifier; every map when not given.");
    AddFlag(command, "--strict", options->strict, "End with status 1 when there is a remark.");
    AddJson(command, options->json);
    commands.OnRun(command, options, RunReview);
}
