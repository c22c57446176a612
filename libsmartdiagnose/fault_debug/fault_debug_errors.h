// What `showallerr` shows of one error type.
#pragma once

#include <string>
#include <vector>

#include "fault_spectrum_graph/fault_causality_graph.h"

// Sorts the points by the type's sum, the highest first, and prints them as a table of at most 101 rows. A
// point whose sum is 0 shows the sum of all types if its errors reach the host under another type. Throws
// std::out_of_range for a type that is none, unless there are no points.
void ShowErrTypeResult(const std::string& typeName, std::vector<NodeResult>& results);
