// The errors that the statistics database holds of points.
#pragma once

#include <array>
#include <cstddef>
#include <map>
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

}  // namespace explain
