#pragma once

#include "component/Metadata.h"

#include <string>

/// The local date and time as "yyyy-MM-dd HH:mm:ss".
std::string LocalTimeText();

/// Sets "lastchanged" to now.
void StampLastChanged(Metadata& object);
