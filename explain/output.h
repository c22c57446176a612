// Where answers go.
#pragma once

#include <stdexcept>
#include <string>

namespace explain {

// An answer or a file cannot be written; what() tells the operator why, or is empty where nobody reads it
// any more.
class OutputError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Prints to stdout. Throws OutputError.
void PrintAnswer(const std::string& text);

// Replaces a file, also one that a link stands for; a device, a pipe or the new file that a link leads to
// takes the page as it is written. Throws OutputError.
void WritePage(const std::string& path, const std::string& page);

}  // namespace explain
