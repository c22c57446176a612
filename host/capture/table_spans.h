// What the tables of a statistics database cover, read without the plug-in.
#pragma once

#include <string>
#include <vector>

#include "text/table_zone.h"

namespace zorv {
// The data tables of the database at `path` that have rows, oldest first: all, or some from both ends of
// many. The first and the last row are those in the order in which they were written. Without those whose
// names tell no time. Throws DatabaseError. Blocks on the file.
std::vector<TableSpan> TableSpansOf(const std::string& path);
}  // namespace zorv
