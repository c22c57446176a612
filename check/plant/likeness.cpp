#include "check/plant/likeness.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>

namespace check {
namespace {

constexpr size_t FEWEST_ROWS = 11;  // as many as an explanation needs

using Rows = std::vector<std::array<int64_t, 3>>;

Rows RowsOf(const std::vector<PointRow>& read) {
    Rows rows;
    std::transform(read.begin(), read.end(), std::back_inserter(rows), [](const PointRow& row) {
        return std::array<int64_t, 3>{row.time, row.requests, row.delay};
    });
    return rows;
}

}  // namespace

std::vector<std::string> LikenessOptions(const PointStatistics& statistics, const std::vector<Site>& sites) {
    std::vector<std::string> options;
    std::map<Rows, std::string> first;  // of the points that change
    std::set<std::string> known;
    for (const Site& site : sites) {
        const auto found = statistics.find(site.point);
        if (found == statistics.end() || found->second.size() < FEWEST_ROWS ||
            !known.insert(site.point).second) {
            continue;
        }
        const std::vector<PointRow>& rows = found->second;
        const bool isConstant = std::all_of(
            rows.begin(), rows.end(), [&](const PointRow& row) { return row.delay == rows.front().delay; });
        if (isConstant) {
            options.insert(options.end(), {"--constant-point", site.point});
            continue;
        }
        const auto [twin, isNew] = first.try_emplace(RowsOf(rows), site.point);
        if (!isNew) {
            options.insert(options.end(), {"--twin-points", twin->second, site.point});
        }
    }
    return options;
}

}  // namespace check
