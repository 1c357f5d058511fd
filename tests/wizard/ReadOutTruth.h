#pragma once

#include <array>
#include <string>
#include <utility>

// What read-outs are held to.

// Slider positions for 10 %, 100 % and 739 %.
inline constexpr std::array<int, 3> Sliders{-23, 0, 20};

/// Half a screen pixel in image pixels, of which whole ones are read out; from 100 % on the pixel is hit.
double Tolerance(int slider);

/// The two numbers of a read-out in its exact form; west and south negative.
std::pair<double, double> ReadOutNumbers(const std::string& status);
