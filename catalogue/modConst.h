#pragma once

#include <string>
#include <string_view>

// What the program calls itself.

inline constexpr std::string_view ApplicationName = "Quorvant Studio";
inline constexpr int VersionMajor = 2;
inline constexpr int VersionMinor = 31;
inline constexpr int VersionRevision = 0;

/// Major, minor and revision joined by points: "2.31.0".
std::string VersionText();

/// Name and version, which a map made by this program carries as its "version": "Quorvant Studio v2.31.0".
std::string ApplicationText();
