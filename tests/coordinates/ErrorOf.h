#pragma once

#include "base/ComponentError.h"

/// The number of the ComponentError that the call throws; no enumerator when it throws none.
template <typename Call>
ErrorNumber ErrorOf(Call call) {
    try {
        call();
    } catch (const ComponentError& error) {
        return error.Number();
    }
    return ErrorNumber{};
}
