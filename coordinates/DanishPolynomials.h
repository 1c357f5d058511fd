#pragma once

#include <span>

/// One direction of a Danish system: the origin is taken from the input, then two polynomials in what
/// remains (e, n) give the output. u is expanded in n^i·e^j, v in e^i·n^j. The coefficients stand in the
/// order i = 0: j = 0 … degree; i = 1: j = 0 … degree - 1; and so on.
struct DanishDirection {
    double originFirst;
    double originSecond;
    std::span<const double> u;
    std::span<const double> v;
};

/// The polynomials between UTM zone 32 (E, N) on International 1924 and a Danish cadastral system (y growing
/// to the west, x to the north), all in metres. Beyond the ranges about the origins they give nonsense.
struct DanishPolynomials {
    int degree;
    double rangeFirst;
    double rangeSecond;
    DanishDirection toGrid;
    DanishDirection fromGrid;
};

const DanishPolynomials& JutlandPolynomials();
const DanishPolynomials& ZealandPolynomials();
const DanishPolynomials& BornholmPolynomials();
