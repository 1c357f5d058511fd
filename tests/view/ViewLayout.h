#pragma once

#include "tests/support/desktop/RecordingMap.h"
#include "tests/view/ViewWindow.h"

#include <gtest/gtest.h>

#include <memory>

/// A window whose view shows maps that note what they are asked for.
class ViewLayout : public testing::Test {
protected:
    /// Shows a map of this size as a selection does.
    std::shared_ptr<RecordingMap> Show(std::int32_t width, std::int32_t height, double zoom = 1.0) {
        auto map = std::make_shared<RecordingMap>(width, height);
        map->SetZoom(zoom);
        View().SetMap(map);
        View().SetMapWidth(map->Width());
        View().SetMapHeight(map->Height());
        View().AdjustSize();
        return map;
    }
    clsBitmapView& View() { return window_.view; }
    QScrollBar& Horizontal() { return window_.horizontal; }
    QScrollBar& Vertical() { return window_.vertical; }
    int Width() { return window_.Place().width(); }
    int Height() { return window_.Place().height(); }

    ViewWindow window_;
};
