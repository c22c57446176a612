#include "text/table_zone.h"

namespace {
constexpr int64_t HOUR = 3600;
constexpr int64_t WEST = -12 * HOUR;  // the zones of the earth
constexpr int64_t EAST = 14 * HOUR;
constexpr int64_t TOLERANCE = 300;  // a table may be made some seconds after its first row's time

bool Fits(const std::vector<TableSpan>& tables, const ZoneChange& zones) {
    const auto startOf = [&](size_t i) {
        return tables[i].named - (i < zones.first ? zones.before : zones.after);
    };
    for (size_t i = 0; i < tables.size(); ++i) {
        const bool isLate = i + 1 < tables.size() && tables[i].rows.end > startOf(i + 1) + TOLERANCE;
        if (isLate || tables[i].rows.start < startOf(i) - TOLERANCE) {
            return false;
        }
    }
    return true;
}

bool Fits(const std::vector<TableSpan>& tables, int64_t zone) {
    return Fits(tables, ZoneChange{zone, zone, 0});
}
}  // namespace

std::optional<int64_t> ZoneOfTables(const std::vector<TableSpan>& tables, std::optional<int64_t> asked) {
    if (tables.empty() || (asked && Fits(tables, *asked))) {
        return asked;
    }
    // The last table has no end: of the zones that fit, the one in which the rows begin with their tables.
    for (int64_t zone = WEST; zone <= EAST; zone += HOUR) {
        if (Fits(tables, zone)) {
            return zone;
        }
    }
    return std::nullopt;
}

std::optional<ZoneChange> ZoneChangeOf(const std::vector<TableSpan>& tables) {
    for (int64_t before = WEST; before <= EAST; before += HOUR) {
        for (const int64_t after : {before - HOUR, before + HOUR}) {
            for (size_t first = 1; first < tables.size(); ++first) {
                if (const ZoneChange change{before, after, first}; Fits(tables, change)) {
                    return change;
                }
            }
        }
    }
    return std::nullopt;
}
