#pragma once

#include "component/PointFit.h"

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

/// A measured point with what a scaling makes of it; its number counts the points of its kind as they were
/// given, from 1.
struct ComparedPoint {
    std::size_t number = 0;
    MeasuredPoint point;
    Residual residual;
};

/// How well a scaling fits: the points that it was fitted to, and those that it is only compared with, each
/// with the worst first.
struct FitReport {
    std::vector<ComparedPoint> points;
    std::vector<ComparedPoint> checks;

    FitReport() = default;
    /// Throws what ResidualsOf throws.
    FitReport(const Georeference& georeference, const std::vector<MeasuredPoint>& fitted,
              const std::vector<MeasuredPoint>& compared);
};

/// One line a point, and the root of the mean square of each kind; nothing where there are none.
std::string FitAsText(const FitReport& report);
/// The fields `points`, `checks` and `rootMeanSquare`.
nlohmann::ordered_json FitAsJson(const FitReport& report);

/// To a thousandth: of a pixel nobody measures more, of a metre nobody maps more.
std::string ResidualText(double value);

/// "point 2 (120.5,80=500000,6100000)".
std::string NameOfPoint(const std::string& kind, const ComparedPoint& compared);
