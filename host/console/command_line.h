// Cutting a command line into words.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace zorv {
using Words = std::vector<std::string>;

// A command line, or the use of a command, that makes no sense; what() tells the operator why.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The words of `line`, cut at blanks. A part in single or double quotes is taken as it is, blanks and the
// other kind of quotes included; "" is an empty word. A line without a word, or whose first word begins with
// '#', has none. Throws UsageError when a quote is not closed or the line holds a NUL byte.
Words SplitLine(std::string_view line);
}  // namespace zorv
