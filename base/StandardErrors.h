#pragma once

#include "base/ComponentError.h"

#include <exception>
#include <new>
#include <string>

// How failures of the standard library and of the operating system are told.

/// What the user is told of any failure: the sentence of a ComponentError, one about memory where there was
/// not enough, and what the exception says of itself for all others.
std::string SentenceOf(const std::exception& error);

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

/// The operating system's own words for one of its error numbers (errno), without a full stop.
std::string SystemReason(int systemError);

/// Whether such a number says that there is no space: the disk is full, or a quota or size limit is reached.
bool MeansDiskFull(int systemError);

/// What a write that failed with this number is told as: DiskFull or FileNotWritable.
ErrorNumber WriteErrorNumber(int systemError);
