#include "text/sparkline.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {
constexpr size_t HEIGHTS = 8;
constexpr std::array<const char*, HEIGHTS> BLOCKS = {"▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
constexpr std::array<const char*, HEIGHTS> LETTERS = {"_", ".", ":", "-", "=", "+", "*", "#"};

constexpr double LATE = 1.5;  // steps: later than any row that is only not quite on time

// How long the value at a position holds.
int64_t HeldUntil(const std::vector<TimedValue>& values, size_t position, int64_t step) {
    const int64_t time = values[position].time;
    const int64_t alone = time + std::max<int64_t>(step, 1);
    if (position + 1 == values.size()) {
        return alone;
    }
    const int64_t next = values[position + 1].time;
    const bool isLate = static_cast<double>(next - time) > LATE * static_cast<double>(step);
    return isLate ? alone : std::max(next, time + 1);
}

size_t HeightOf(double value, double floor, double top) {
    const double part = top > floor ? (value - floor) / (top - floor) : 0.0;
    return static_cast<size_t>(std::lround(std::clamp(part, 0.0, 1.0) * (HEIGHTS - 1)));
}
}  // namespace

std::vector<std::optional<double>> LargestPerCell(const std::vector<TimedValue>& values, int64_t start,
                                                  int64_t end, int64_t step, size_t cells) {
    std::vector<std::optional<double>> largest(cells);
    const auto cellOf = [&](int64_t time) {  // a range is days, and a screen hundreds of cells
        return static_cast<size_t>(time - start) * cells / static_cast<size_t>(end - start);
    };
    for (size_t i = 0; i < values.size() && cells > 0 && start < end; ++i) {
        const int64_t from = std::max(values[i].time, start);
        const int64_t until = std::min(HeldUntil(values, i, step), end);
        for (size_t cell = from < until ? cellOf(from) : cells; cell < cells && cell <= cellOf(until - 1);
             ++cell) {
            largest[cell] = std::max(largest[cell].value_or(values[i].value), values[i].value);
        }
    }
    return largest;
}

std::string Sparkline(const std::vector<std::optional<double>>& values, double floor, double top,
                      bool isUnicode) {
    std::string bars;
    for (const std::optional<double>& value : values) {
        bars += value ? (isUnicode ? BLOCKS : LETTERS)[HeightOf(*value, floor, top)] : " ";
    }
    return bars;
}
