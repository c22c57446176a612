// The errors that the statistics database holds of points.
#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "explain/errors/error_event.h"
#include "explain/finding/sample_store.h"

namespace explain {

constexpr size_t ERROR_COLUMNS = 5;

// By column, errCode0 first.
using PointErrors = std::array<ErrorCounts, ERROR_COLUMNS>;

// Loads the errors of these points over the stretches of a store: a statement a table, for intervals with
// errors alone. Points without errors are left out. Blocks on the database. Throws NoData when a query failed
// or the tables have no columns for errors, std::invalid_argument for a cell that is no number.
std::map<std::string, PointErrors> LoadErrors(const std::vector<SampleStore::Part>& parts,
                                              const std::set<std::string>& points);

// Errors that are kept while a store of samples moves on.
class ErrorStore {
public:
    // As LoadErrors() of the samples' stretches; from the second time on, only what is at least as late as
    // their newest row was the time before is loaded. The points have to be the same. Valid until the next
    // call.
    const std::map<std::string, PointErrors>& Of(SampleStore& samples, const std::set<std::string>& points);

private:
    std::map<std::string, PointErrors> errors;
    std::optional<int64_t> newest;  // row of the samples
};

}  // namespace explain
