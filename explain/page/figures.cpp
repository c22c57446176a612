#include "explain/page/figures.h"

#include <cmath>

namespace explain {
namespace {

constexpr double MILLISECOND = 1e3;  // in microseconds
constexpr double SECOND = 1e6;
constexpr double MOST_OF_A_UNIT = 10.0;  // thousands, before the next unit reads better
constexpr const char* SPACE = "\u00a0";  // a number and its unit stay on one line

}  // namespace

std::string Figure(double value, int digits) {
    if (!std::isfinite(value)) {
        return UNKNOWN_FIGURE;
    }
    const std::string figure = Fixed(value, digits);
    const bool isZero = figure.find_first_of("123456789") == std::string::npos;
    return isZero && figure[0] == '-' ? figure.substr(1) : figure;
}

std::string Figure(const std::optional<double>& value, int digits) {
    return value ? Figure(*value, digits) : UNKNOWN_FIGURE;
}

std::string PercentFigure(double share) {
    return Figure(share * 100.0, 1) + SPACE + "%";
}

std::string PlaceFigure(double x, double y) {
    return Figure(x, 1) + "," + Figure(y, 1);
}

std::string DelayFigure(const std::optional<double>& microseconds) {
    return microseconds ? DelayFigure(*microseconds, *microseconds) : UNKNOWN_FIGURE;
}

std::string DelayFigure(double microseconds, double largest) {
    const double size = std::fabs(largest);
    return size < MOST_OF_A_UNIT * MILLISECOND ? Figure(microseconds, 0) + SPACE + "\u00b5s"
           : size < MOST_OF_A_UNIT * SECOND    ? Figure(microseconds / MILLISECOND, 1) + SPACE + "ms"
                                               : Figure(microseconds / SECOND, 1) + SPACE + "s";
}

const Figures PAGE_FIGURES = {PercentFigure,
                              [](double microseconds) { return DelayFigure(microseconds, microseconds); }};

}  // namespace explain
