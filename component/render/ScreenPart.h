#pragma once

#include "component/Bitmap.h"
#include "component/render/ViewAxis.h"
#include "component/render/ViewRequest.h"

#include <vector>

/// A rectangle of a view's pixels.
struct ScreenPart {
    ScreenRange columns;
    ScreenRange rows;

    bool IsEmpty() const { return columns.Count() <= 0 || rows.Count() <= 0; }
    bool operator==(const ScreenPart&) const = default;
};

/// The pixels of `shown` that a former view of the same map shows too: at the same zoom a pixel depends on
/// its position alone, so a scrolled view takes them over. Empty at another zoom.
ScreenPart KeptPart(const ScreenPart& shown, const ViewRequest& request, const ViewRequest& former);

/// What `shown` has beside `kept`, which lies inside it: up to four parts that do not overlap.
std::vector<ScreenPart> PartsBeside(const ScreenPart& kept, const ScreenPart& shown);

/// Copies the kept part from the former view's picture.
void CopyKept(const ScreenPart& kept, const ViewRequest& request, const ViewRequest& former,
              const Bitmap& from, Bitmap& to);
