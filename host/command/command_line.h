// Cutting a command line into words.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cli/program.h"

namespace zorv {
using cli::UsageError;  // also for the use of a command that makes no sense
using Words = std::vector<std::string>;

// The words of `line`, cut at blanks. A part in single or double quotes is taken as it is, blanks and the
// other kind of quotes included; "" is an empty word. A line without a word, or whose first word begins with
// '#', has none. Throws UsageError when a quote is not closed or the line holds a NUL byte.
Words SplitLine(std::string_view line);
}  // namespace zorv
