#pragma once

#include "component/AtlavexLibrary.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// Whether a command means a map or an icon.
enum class ObjectKind { Map, Icon };

/// "map" or "icon"; throws UsageError for anything else.
ObjectKind ParseObjectKind(const std::string& text);

/// The position from 1 that a text chooses: digits are the position itself; any other text is a name or, for
/// maps, an identifier; "name:" and "id:" in front force one of them. Throws CommandFailure when nothing fits
/// or more than one does.
std::int32_t SelectPosition(AtlavexLibrary& library, ObjectKind kind, const std::string& text);

/// A text by which SelectPosition finds one object alone, and for a reader its position and name.
struct Selector {
    std::string text; ///< the name, "name:" and the name, or the position: the first that is no other's
    std::string meaning;
};

/// That of each map or icon, by position.
std::vector<Selector> SelectorsOf(AtlavexLibrary& library, ObjectKind kind);

std::shared_ptr<AtlavexMap> SelectMap(AtlavexLibrary& library, const std::string& text);
std::shared_ptr<AtlavexIcon> SelectIcon(AtlavexLibrary& library, const std::string& text);
/// The key/value texts of what is chosen.
std::shared_ptr<Metadata> SelectMetadata(AtlavexLibrary& library, ObjectKind kind, const std::string& text);
