#include "cli/output/FitReport.h"

#include "cli/output/Output.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>

using Json = nlohmann::ordered_json;

namespace {

/// Worse is farther; what is not defined is worst of all.
bool IsWorse(const ComparedPoint& a, const ComparedPoint& b) {
    return a.residual.pixels > b.residual.pixels ||
           (std::isnan(a.residual.pixels) && !std::isnan(b.residual.pixels));
}

std::vector<ComparedPoint> Compared(const Georeference& georeference,
                                    const std::vector<MeasuredPoint>& points) {
    const std::vector<Residual> residuals = ResidualsOf(georeference, points);
    std::vector<ComparedPoint> compared;
    for (std::size_t i = 0; i < points.size(); ++i)
        compared.push_back({i + 1, points[i], residuals[i]});
    std::ranges::stable_sort(compared, IsWorse);
    return compared;
}

double RootMeanSquare(const std::vector<ComparedPoint>& points, double Residual::*number) {
    double sum = 0;
    for (const ComparedPoint& point : points)
        sum += point.residual.*number * (point.residual.*number) / static_cast<double>(points.size());
    return std::sqrt(sum);
}

std::string LineOf(const std::string& name, double pixels, double metres) {
    return name + ": " + ResidualText(pixels) + " pixels, " + ResidualText(metres) + " m\n";
}

std::string TextOf(const std::string& kind, const std::vector<ComparedPoint>& points) {
    std::string text;
    for (const ComparedPoint& point : points)
        text += LineOf(NameOfPoint(kind, point), point.residual.pixels, point.residual.metres);
    if (!points.empty())
        text += LineOf("root mean square of the " + kind + "s", RootMeanSquare(points, &Residual::pixels),
                       RootMeanSquare(points, &Residual::metres));
    return text;
}

Json ListOf(const std::vector<ComparedPoint>& points) {
    Json list = Json::array();
    for (const auto& [number, point, residual] : points)
        list.push_back({{"number", number},
                        {"pixelX", point.pixelX},
                        {"pixelY", point.pixelY},
                        {"x", point.x},
                        {"y", point.y},
                        {"right", residual.right},
                        {"down", residual.down},
                        {"pixels", residual.pixels},
                        {"metres", residual.metres}});
    return list;
}

Json MeanOf(const std::vector<ComparedPoint>& points) {
    if (points.empty())
        return nullptr;
    return {{"pixels", RootMeanSquare(points, &Residual::pixels)},
            {"metres", RootMeanSquare(points, &Residual::metres)}};
}

} // namespace

FitReport::FitReport(const Georeference& georeference, const std::vector<MeasuredPoint>& fitted,
                     const std::vector<MeasuredPoint>& compared)
    : points(Compared(georeference, fitted)), checks(Compared(georeference, compared)) {}

std::string FitAsText(const FitReport& report) {
    return TextOf("point", report.points) + TextOf("check", report.checks);
}

Json FitAsJson(const FitReport& report) {
    return {{"points", ListOf(report.points)},
            {"checks", ListOf(report.checks)},
            {"rootMeanSquare", {{"points", MeanOf(report.points)}, {"checks", MeanOf(report.checks)}}}};
}

std::string ResidualText(double value) {
    if (!std::isfinite(value))
        return "undefined";
    std::array<char, 400> text{}; // a double has at most 309 digits before its point
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, 3).ptr;
    return {text.data(), end};
}

std::string NameOfPoint(const std::string& kind, const ComparedPoint& compared) {
    const MeasuredPoint& point = compared.point;
    return kind + " " + std::to_string(compared.number) + " (" + CoordinateText(point.pixelX) + "," +
           CoordinateText(point.pixelY) + "=" + CoordinateText(point.x) + "," + CoordinateText(point.y) + ")";
}
