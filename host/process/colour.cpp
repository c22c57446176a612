#include "host/process/colour.h"

#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace zorv {
namespace {
std::string_view Variable(const char* name) {
    const char* const value = std::getenv(name);
    return value == nullptr ? "" : value;
}
}  // namespace

bool WantsColour(int descriptor) {
    const std::string_view terminal = Variable("TERM");
    return isatty(descriptor) == 1 && Variable("NO_COLOR").empty() && !terminal.empty() && terminal != "dumb";
}
}  // namespace zorv
