#include "base/ComponentError.h"

ComponentError::ComponentError(ErrorNumber number, const std::string& description)
    : std::runtime_error(description), number_(number) {}
