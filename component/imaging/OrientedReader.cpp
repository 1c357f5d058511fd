#include "component/imaging/OrientedReader.h"

std::unique_ptr<RowReader> ApplyOrientation(std::unique_ptr<RowReader> reader, Orientation) {
    return reader;
}
