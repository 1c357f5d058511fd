#include "base/StandardErrors.h"

#include <cerrno>
#include <system_error>

std::string SentenceOf(const std::exception& error) {
    // The standard library's own words for it name a type.
    if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr)
        return "There is not enough memory.";
    return error.what();
}

ComponentError LackOfMemory() {
    return {ErrorNumber::OutOfMemory, "There is not enough memory for this operation."};
}

std::string SystemReason(int systemError) {
    return std::generic_category().message(systemError);
}

bool MeansDiskFull(int systemError) {
    return systemError == ENOSPC || systemError == EDQUOT || systemError == EFBIG;
}

ErrorNumber WriteErrorNumber(int systemError) {
    return MeansDiskFull(systemError) ? ErrorNumber::DiskFull : ErrorNumber::FileNotWritable;
}
