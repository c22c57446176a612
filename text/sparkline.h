// A series as a row of bars, one cell of the screen each.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// A value that holds from its time on: until the next one or, where that is late, for one step.
struct TimedValue {
    int64_t time = 0;  // UTC seconds
    double value = 0.0;
};

// A value for each of `cells` equal parts of the time from `start` to before `end`: the largest that holds in
// it, so that the shortest peak stays; none where none does. `values` are of ascending times, usually `step`
// seconds apart (0: not known).
std::vector<std::optional<double>> LargestPerCell(const std::vector<TimedValue>& values, int64_t start,
                                                  int64_t end, int64_t step, size_t cells);

// A bar for each value, of eight heights, in `isUnicode` or in ASCII; a blank where there is none. The lowest
// stands for `floor` and less, the highest for `top` and more.
std::string Sparkline(const std::vector<std::optional<double>>& values, double floor, double top,
                      bool isUnicode);
