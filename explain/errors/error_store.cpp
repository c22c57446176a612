#include "explain/errors/error_store.h"

#include <algorithm>
#include <iterator>

#include "explain/finding/rows.h"
#include "fault_common/fault_number.h"

namespace explain {
namespace {

constexpr const char* COLUMNS = "locateid, curtime, errCode0, errCode1, errCode2, errCode3, errCode4";
constexpr const char* LAST_COLUMN = "errCode4";
// Stands first: most rows have none, so that nothing else is looked at.
constexpr const char* HAS_ERRORS =
    "(errCode0 > 0 or errCode1 > 0 or errCode2 > 0 or errCode3 > 0 or errCode4 > 0)";
constexpr size_t CELLS = 2 + ERROR_COLUMNS;
constexpr size_t MOST_ERRORS = 5'000'000;  // intervals of points; far more than a day of errors everywhere
constexpr int64_t MOST_COUNT = 1'000'000'000'000;  // of one interval: sums of all of them stay numbers

// The points by their number in the tables; of several numbers of a name the first one counts, as in all
// statements.
std::multimap<int64_t, std::string> PointNumbers(const std::set<std::string>& points) {
    const std::vector<std::string> cells = TextsOf("select locateid, locatename from version_nmaps;");
    std::multimap<int64_t, std::string> numbers;
    std::set<std::string> known;
    for (size_t i = 0; i + 1 < cells.size(); i += 2) {
        if (points.count(cells[i + 1]) > 0 && known.insert(cells[i + 1]).second) {
            numbers.emplace(FaultToInt64(cells[i]), cells[i + 1]);
        }
    }
    return numbers;
}

void CheckColumns(const std::string& table) {
    if (DefinitionOf(table).find(LAST_COLUMN) == std::string::npos) {
        throw NoData({ReasonKind::NO_ERROR_COUNTS, 0, 0, table});
    }
}

void Add(const std::vector<int64_t>& numbers, const std::multimap<int64_t, std::string>& names,
         std::map<std::string, PointErrors>& errors) {
    for (size_t i = 0; i < numbers.size(); i += CELLS) {
        const auto [first, last] = names.equal_range(numbers[i]);
        for (auto name = first; name != last; ++name) {
            PointErrors& point = errors[name->second];
            for (size_t column = 0; column < ERROR_COLUMNS; ++column) {
                if (const int64_t count = numbers[i + 2 + column]; count > 0) {
                    point[column].push_back({numbers[i + 1], std::min(count, MOST_COUNT)});
                }
            }
        }
    }
}

// Points that are left without any go.
void KeepWithin(const Window& window, std::map<std::string, PointErrors>& errors) {
    for (auto point = errors.begin(); point != errors.end();) {
        bool isEmpty = true;
        for (ErrorCounts& counts : point->second) {
            counts.erase(std::remove_if(counts.begin(), counts.end(),
                                        [&](const ErrorCount& one) { return !window.Holds(one.time); }),
                         counts.end());
            isEmpty = isEmpty && counts.empty();
        }
        point = isEmpty ? errors.erase(point) : std::next(point);
    }
}

}  // namespace

std::map<std::string, PointErrors> LoadErrors(const std::vector<SampleStore::Part>& parts,
                                              const std::set<std::string>& points) {
    std::map<std::string, PointErrors> errors;
    const std::multimap<int64_t, std::string> names = PointNumbers(points);
    size_t taken = 0;
    for (const SampleStore::Part& part : parts) {
        if (names.empty()) {
            return errors;
        }
        for (const std::string& table : part.tables) {
            CheckColumns(table);
            std::vector<int64_t> numbers;
            AppendNumbers(std::string("select ") + COLUMNS + " from " + table + " where " + HAS_ERRORS +
                              " and curtime >= " + std::to_string(part.stretch.start) +
                              " and curtime <= " + std::to_string(part.stretch.end) + ";",
                          {ReasonKind::UNREADABLE_DATABASE}, numbers);
            taken += numbers.size() / CELLS;
            if (taken > MOST_ERRORS) {
                throw NoData({ReasonKind::BAD_VALUE, 0, 0, "errors: too many rows for the range"});
            }
            Add(numbers, names, errors);
        }
    }
    for (auto& [name, columns] : errors) {
        for (ErrorCounts& counts : columns) {
            std::stable_sort(counts.begin(), counts.end(),
                             [](const ErrorCount& a, const ErrorCount& b) { return a.time < b.time; });
        }
    }
    return errors;
}

const std::map<std::string, PointErrors>& ErrorStore::Of(SampleStore& samples,
                                                         const std::set<std::string>& points) {
    const Window stretch = samples.Parts().back().stretch;
    if (!newest || !stretch.Holds(*newest)) {
        errors = LoadErrors(samples.Parts(), points);
    } else {
        const std::map<std::string, PointErrors> later = LoadErrors({samples.PartSince(*newest)}, points);
        KeepWithin({stretch.start, *newest - 1}, errors);
        for (const auto& [name, columns] : later) {
            for (size_t column = 0; column < ERROR_COLUMNS; ++column) {
                ErrorCounts& counts = errors[name][column];
                counts.insert(counts.end(), columns[column].begin(), columns[column].end());
            }
        }
    }
    newest.reset();
    for (const auto& [name, data] : samples.Points()) {
        newest =
            std::max(newest, data.samples.empty() ? std::nullopt : std::optional(data.samples.back().time));
    }
    return errors;
}

}  // namespace explain
