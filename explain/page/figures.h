// Numbers and times as the page shows them: with signs that a terminal may not have. Any thread; nothing here
// fails.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "explain/wording.h"

namespace explain {

// What stands where nothing is known.
constexpr const char* UNKNOWN_FIGURE = "\u2013";

// With that many digits behind the point; what is no finite number is unknown.
std::string Figure(double value, int digits);
std::string Figure(const std::optional<double>& value, int digits);

// A share of 0 to 1 in percent, such as "96.6 %".
std::string PercentFigure(double share);

// A place in a drawing, "12.5,3.0".
std::string PlaceFigure(double x, double y);

// A delay, in microseconds as the statistics have it: in the unit that suits it, or that suits the largest of
// several to compare.
std::string DelayFigure(const std::optional<double>& microseconds);
std::string DelayFigure(double microseconds, double largest);

// What the sentences of the page are written with.
extern const Figures PAGE_FIGURES;

}  // namespace explain
