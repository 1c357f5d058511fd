#pragma once

#include <string>
#include <string_view>

class AtlavexLibrary;
class Metadata;

// The texts and identifiers that every program gives to maps and icons which are new or were changed.

/// The present local date and time as it is written into metadata: "2026-11-21 16:07:33".
std::string LocalTimeText();

/// The name that a new map or icon takes from its image's file: the part of the path behind its last "/", or
/// without one behind its last "\", up to the first ".".
std::string NameFromFile(std::string_view path);

/// Sets the texts of a map or icon that has just been added: "name", "description", "version", "created" and
/// "lastchanged", in this order.
void DescribeNewObject(Metadata& object, const std::string& name, const std::string& description,
                       const std::string& version);

/// Sets "lastchanged" to now.
void StampLastChanged(Metadata& object);
/// Sets it of every map, then of every icon; each gets its own reading of the clock.
void StampLastChanged(AtlavexLibrary& library);

/// Gives every map whose identifier is no GUID text a new one.
void CompleteIdentifiers(AtlavexLibrary& library);
