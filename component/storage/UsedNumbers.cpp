#include "component/storage/UsedNumbers.h"

#include <algorithm>

namespace {

/// The first number of the statement, or the other one where it gives none.
std::int64_t FirstOr(std::int64_t other, Database& database, const std::string& sql) {
    Statement rows(database, sql.c_str());
    return rows.Step() ? rows.Integer(0) : other;
}

} // namespace

UsedNumbers UsedNumbers::Of(Database& database) {
    UsedNumbers used;
    for (const std::string table : {"map", "icon", "metadata", "tile_index", "blob"}) {
        const std::string start = "SELECT id FROM " + table + " ORDER BY id";
        used.smallest = std::min(used.smallest, FirstOr(used.smallest, database, start + " LIMIT 1"));
        used.largest = std::max(used.largest, FirstOr(used.largest, database, start + " DESC LIMIT 1"));
    }
    return used;
}
