#pragma once

#include "component/AtlavexLibrary.h"

#include <functional>
#include <string>

/// Tells what of an image was passed over, or is shown otherwise than it is stored, at the end of every
/// adding of a map or icon to this library: one sentence each, which names the file. The library must be one
/// that CreateAtlavexLibrary made.
void OnImageRemark(AtlavexLibrary& library, std::function<void(const std::string& sentence)> tell);
