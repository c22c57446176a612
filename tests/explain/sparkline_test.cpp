// Series as bars.
#include "text/sparkline.h"

#include <gtest/gtest.h>

#include <string>

namespace {
// Values every 10 seconds as digits, '_' without one, '~' one 4 seconds late, over so many cells.
TEST(Sparkline, KeepsPeaksAndGaps) {
    const struct {
        const char* values;
        size_t cells;
        double top;
        const char* ascii;
        const char* unicode;
    } cases[] = {
        {"0000", 4, 7, "____", "▁▁▁▁"},
        {"00700000", 4, 7, "_#__", "▁█▁▁"},
        {"01234567", 8, 7, "_.:-=+*#", "▁▂▃▄▅▆▇█"},
        {"7__7", 4, 7, "#  #", "█  █"},
        {"70", 4, 7, "##__", "██▁▁"},
        {"7~77", 8, 7, "########", "████████"},
        {"90", 2, 3, "#_", "█▁"},
        {"00", 2, 0, "__", "▁▁"},
        {"____", 4, 7, "    ", "    "},
    };
    for (const auto& row : cases) {
        std::vector<TimedValue> values;
        int64_t time = 0;
        for (const char letter : std::string(row.values)) {
            if (letter == '~') {
                values.push_back({time + 4, 7.0});
            } else if (letter != '_') {
                values.push_back({time, static_cast<double>(letter - '0')});
            }
            time += 10;
        }
        const auto cells = LargestPerCell(values, 0, time, 10, row.cells);
        EXPECT_EQ(Sparkline(cells, 0.0, row.top, false), row.ascii) << row.values;
        EXPECT_EQ(Sparkline(cells, 0.0, row.top, true), row.unicode) << row.values;
    }
}
}  // namespace
