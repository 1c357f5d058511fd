#include "base/StandardErrors.h"

ComponentError LackOfMemory() {
    return {ErrorNumber::OutOfMemory, "There is not enough memory for this operation."};
}
