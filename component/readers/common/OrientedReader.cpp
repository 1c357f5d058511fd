#include "component/readers/common/OrientedReader.h"

#include "component/readers/common/FlippedReader.h"
#include "component/readers/common/TransposedReader.h"

std::unique_ptr<RowReader> ApplyOrientation(std::unique_ptr<RowReader> reader, Orientation orientation,
                                            const std::filesystem::path& spoolFolder) {
    switch (orientation) {
    case Orientation::TopLeft:
        return reader;
    case Orientation::TopRight:
        return std::make_unique<MirroredReader>(std::move(reader));
    case Orientation::BottomRight:
    case Orientation::BottomLeft:
        return std::make_unique<FlippedReader>(std::move(reader), orientation, spoolFolder);
    case Orientation::LeftTop:
    case Orientation::RightTop:
    case Orientation::RightBottom:
    case Orientation::LeftBottom:
        return std::make_unique<TransposedReader>(std::move(reader), orientation, spoolFolder);
    }
    return reader;
}
