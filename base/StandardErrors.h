#pragma once

#include "base/ComponentError.h"

#include <new>
#include <stdexcept>

// A lack of memory as the engine tells it.

/// The failure that the memory asked for was not to be had.
ComponentError LackOfMemory();

/// Does the work; a lack of memory leaves it as ErrorNumber::OutOfMemory.
template <typename Work>
decltype(auto) TellingLackOfMemory(const Work& work) {
    try {
        return work();
    } catch (const std::bad_alloc&) {
        throw LackOfMemory();
    } catch (const std::length_error&) { // a size that no memory can have
        throw LackOfMemory();
    }
}
