#include "explain/errors/count_chance.h"

#include <cmath>

namespace explain {
namespace {

constexpr int MOST_TERMS = 10000;
constexpr double ENOUGH = 1e-12;  // relative to the sum
constexpr double TINY = 1e-300;

double AwayFromZero(double value) {
    return std::fabs(value) < TINY ? TINY : value;
}

// The continued fraction of the incomplete beta function, by Lentz's method.
double BetaFraction(double x, double a, double b) {
    double c = 1.0;
    double d = 1.0 / AwayFromZero(1.0 - (a + b) * x / (a + 1.0));
    double fraction = d;
    for (int i = 1; i < MOST_TERMS; ++i) {
        const double m = i;
        const double even = m * (b - m) * x / ((a + 2.0 * m - 1.0) * (a + 2.0 * m));
        d = 1.0 / AwayFromZero(1.0 + even * d);
        c = AwayFromZero(1.0 + even / c);
        fraction *= d * c;
        const double odd = -(a + m) * (a + b + m) * x / ((a + 2.0 * m) * (a + 2.0 * m + 1.0));
        d = 1.0 / AwayFromZero(1.0 + odd * d);
        c = AwayFromZero(1.0 + odd / c);
        fraction *= d * c;
        if (std::fabs(d * c - 1.0) < ENOUGH) {
            break;
        }
    }
    return fraction;
}

// Not std::lgamma(), which writes a global.
double LogGamma(double value) {
    int sign = 0;
    return lgamma_r(value, &sign);
}

}  // namespace

double LogChance(double count, double others, double length, double rest) {
    if (count <= 0.0 || rest <= 0.0) {
        return 0.0;
    }
    // The binomial tail is a regularized incomplete beta function: I_x(count, others + 1).
    const double a = count;
    const double b = others + 1.0;
    const double x = length / (length + rest);
    if (x >= (a + 1.0) / (a + b + 2.0)) {
        return 0.0;  // about as many as are expected, or fewer
    }
    const double front = a * std::log(x) + b * std::log1p(-x) + LogGamma(a + b) - LogGamma(a) - LogGamma(b);
    return front + std::log(BetaFraction(x, a, b)) - std::log(a);
}

}  // namespace explain
