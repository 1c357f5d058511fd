#include "component/storage/MapParticulars.h"

#include "component/scaling/ShiftRules.h"

namespace {

constexpr std::uint8_t ShiftUnknownFlag = 1;

/// The least that one takes: a point with an empty label, a set with an empty name and no points.
constexpr std::size_t SmallestPoint = 4 * 8 + 4;
constexpr std::size_t SmallestSet = 4 + 4;

void Require(bool holds, const char* reason) {
    ByteReader::Require(holds, reason);
}

/// A count that neither the format nor what is left of the record contradicts: memory is asked for
/// afterwards.
std::size_t ReadCount(ByteReader& reader, std::size_t most, std::size_t smallest, const char* tooMany) {
    const std::size_t count = reader.Integer<std::uint32_t>();
    Require(count <= most, tooMany);
    Require(count * smallest <= reader.Left(), "it breaks off");
    return count;
}

void WriteSystem(ByteWriter& writer, const SystemIdentity& system) {
    writer.Integer(system.shiftUnknown ? ShiftUnknownFlag : std::uint8_t{0});
    for (const std::string* text : {&system.code, &system.name, &system.shiftCode, &system.shiftName})
        writer.Text(*text);
    writer.Double(system.shiftAccuracy);
}

SystemIdentity ReadSystem(ByteReader& reader) {
    SystemIdentity system;
    const auto flags = reader.Integer<std::uint8_t>();
    Require((flags & ~ShiftUnknownFlag) == 0, "it has an unknown flag");
    system.shiftUnknown = flags != 0;
    for (std::string* text : {&system.code, &system.name, &system.shiftCode, &system.shiftName})
        *text = reader.Text();
    system.shiftAccuracy = reader.FiniteDouble();
    Require(system.shiftAccuracy >= 0 && !std::signbit(system.shiftAccuracy),
            "the accuracy of its shift is negative");
    Require(IsConsistent(system), "its shift is unknown and yet named");
    return system;
}

void WritePoints(ByteWriter& writer, const std::vector<MeasuredPoint>& points) {
    writer.Integer(static_cast<std::uint32_t>(points.size()));
    for (const MeasuredPoint& point : points) {
        for (const double number : {point.x, point.y, point.pixelX, point.pixelY})
            writer.Double(number);
        writer.Text(point.label);
    }
}

std::vector<MeasuredPoint> ReadPoints(ByteReader& reader) {
    std::vector<MeasuredPoint> points(
        ReadCount(reader, MostMeasuredPoints, SmallestPoint, "it has too many points"));
    for (MeasuredPoint& point : points) {
        for (double* number : {&point.x, &point.y, &point.pixelX, &point.pixelY})
            *number = reader.FiniteDouble();
        point.label = reader.Text();
    }
    return points;
}

std::vector<CheckSet> ReadCheckSets(ByteReader& reader) {
    std::vector<CheckSet> sets(ReadCount(reader, MostCheckSets, SmallestSet, "it has too many check sets"));
    for (CheckSet& set : sets) {
        set.name = reader.Text();
        set.points = ReadPoints(reader);
    }
    return sets;
}

} // namespace

std::uint8_t RecordVersionFor(const Georeference& georeference) {
    const bool reserved = georeference.grid && IsReserved(georeference.grid->method);
    const bool plain = georeference.system == SystemIdentity() && georeference.entered.empty() &&
                       georeference.checks.empty();
    return plain && !reserved ? 1 : 2;
}

void WriteParticulars(ByteWriter& writer, const Georeference& georeference) {
    WriteSystem(writer, georeference.system);
    WritePoints(writer, georeference.entered);
    writer.Integer(static_cast<std::uint32_t>(georeference.checks.size()));
    for (const CheckSet& set : georeference.checks) {
        writer.Text(set.name);
        WritePoints(writer, set.points);
    }
}

void ReadParticulars(ByteReader& reader, Georeference& georeference) {
    georeference.system = ReadSystem(reader);
    Require(!georeference.system.shiftUnknown || IsEllipsoidAlone(georeference.datum),
            "its shift is unknown and yet given");
    georeference.entered = ReadPoints(reader);
    georeference.checks = ReadCheckSets(reader);
    Require(RecordVersionFor(georeference) == 2, "it is of version 2 and needs none of it");
}
