#pragma once

#include <QString>

#include <string>

class AtlavexLibrary;
class Metadata;

/// The present local date and time as it is written into metadata: "2026-11-21 16:07:33".
QString NowText();

/// Sets the texts of a map or icon that has just been added: "name", "description", "version", "created" and
/// "lastchanged", in this order.
void DescribeNewObject(Metadata& object, const QString& name, const QString& description,
                       const std::string& version);

/// Sets "lastchanged" of every map, then of every icon, to now; each gets its own reading of the clock.
void StampLastChanged(AtlavexLibrary& library);

/// Gives every map whose identifier is no GUID text a new one.
void CompleteIdentifiers(AtlavexLibrary& library);
