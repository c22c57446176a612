// What a statement answers that reads the statistics for an explanation.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "explain/finding/reason.h"

namespace explain {

// As the inside of an SQL text.
std::string SqlText(const std::string& name);

// All that follow block on the database, and throw NoData for `failure` when the statement failed.

// Appends all cells, row by row. Throws std::invalid_argument for a cell that is no number.
void AppendNumbers(const std::string& sql, const Reason& failure, std::vector<int64_t>& numbers);

// All cells, row by row.
std::vector<std::string> TextsOf(const std::string& sql,
                                 const Reason& failure = {ReasonKind::UNREADABLE_DATABASE});

// The statement that made a table, with the names of its columns; empty where it is not there. A statement
// for a column that it lacks would be tried again for a minute.
std::string DefinitionOf(const std::string& table);

}  // namespace explain
