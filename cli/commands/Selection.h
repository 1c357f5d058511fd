#pragma once

#include "component/AtlavexLibrary.h"

#include <cstdint>
#include <memory>
#include <string>

/// Whether a command means a map or an icon.
enum class ObjectKind { Map, Icon };

/// "map" or "icon"; throws UsageError for anything else.
ObjectKind ParseObjectKind(const std::string& text);

/// The position from 1 that a text chooses: digits are the position itself; any other text is a name or, for
/// maps, an identifier; "name:" and "id:" in front force one of them. Throws CommandFailure when nothing fits
/// or more than one does.
std::int32_t SelectPosition(AtlavexLibrary& library, ObjectKind kind, const std::string& text);

std::shared_ptr<AtlavexMap> SelectMap(AtlavexLibrary& library, const std::string& text);
std::shared_ptr<AtlavexIcon> SelectIcon(AtlavexLibrary& library, const std::string& text);
/// The key/value texts of what is chosen.
std::shared_ptr<Metadata> SelectMetadata(AtlavexLibrary& library, ObjectKind kind, const std::string& text);
