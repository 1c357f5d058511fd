#pragma once

#include "component/storage/files/Database.h"

/// The smallest and the largest number that a row of a library has; 1 and 0 when there is none.
struct UsedNumbers {
    std::int64_t smallest = 1;
    std::int64_t largest = 0;

    /// Costs a few pages, whatever the size of the file.
    static UsedNumbers Of(Database& database);
};
