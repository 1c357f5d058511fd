#pragma once

#include <optional>
#include <string>
#include <vector>

/// A word that a shell may offer, and what it says of it.
struct OfferedWord {
    std::string word;
    std::string explanation;
};

using OfferedWords = std::vector<OfferedWord>;

// The values that arguments can take, as far as they are known. --------------------------------------------

OfferedWords GridsToOffer();
/// The zones of a grid; none where it has no zones or is unknown.
OfferedWords ZonesToOffer(const std::string& grid);
OfferedWords DatumsToOffer();
OfferedWords UnitsToOffer();
/// The names of the environment's variables.
OfferedWords VariablesToOffer();

/// The maps, resp. icons, of a library file, each by the text that chooses it alone: its name, with "name:"
/// in front where it would be taken for something else, or its position. Nothing of a file that is sealed,
/// damaged, being written, or no library.
OfferedWords MapsToOffer(const std::string& file);
OfferedWords IconsToOffer(const std::string& file);

/// The keys of the texts that belong to a map or icon; `kind` is "map" or "icon".
OfferedWords KeysToOffer(const std::string& file, const std::string& kind, const std::string& which);
