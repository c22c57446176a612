// Which program, and which libraries it runs with.
#pragma once

#include <string>

namespace zorv {
// The answer to --version: the program's version, and those of the libraries that are loaded, which need not
// be those it was built with.
std::string VersionText();
}  // namespace zorv
