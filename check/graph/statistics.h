// What the statistics database holds of each point.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace check {

struct PointRow {
    int64_t time;  // UTC seconds
    int64_t requests;
    int64_t delay;
};

// The points that the database knows, each with its rows of the newest day, ascending by time.
using PointStatistics = std::map<std::string, std::vector<PointRow>, std::less<>>;

}  // namespace check
