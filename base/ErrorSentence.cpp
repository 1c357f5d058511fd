#include "base/ErrorSentence.h"

#include <new>

std::string SentenceOf(const std::exception& error) {
    // The standard library's own words for it name a type.
    if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr)
        return "There is not enough memory.";
    return error.what();
}
