#pragma once

#include <exception>
#include <string>

/// What the user is told of any failure: the sentence of a ComponentError, one about memory where there was
/// not enough, and what the exception says of itself for all others.
std::string SentenceOf(const std::exception& error);
