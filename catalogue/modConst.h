#pragma once

#include <string>
#include <string_view>

// What the program calls itself.

inline constexpr std::string_view ApplicationName = "Quorvant Studio";

/// Major, minor and revision joined by points: "2.31.0".
std::string VersionText();

/// Name and version, which a map made by this program carries as its "version": "Quorvant Studio v2.31.0".
std::string ApplicationText();
