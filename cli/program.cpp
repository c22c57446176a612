#include "cli/program.h"

#include <cstdio>

#include "text/printable.h"
#include "text/time_words.h"

namespace cli {
namespace {

int Tell(const char* name, const std::exception& error, int status) {
    if (error.what()[0] != '\0') {
        std::fprintf(stderr, "%s: %s\n", name, Printable(error.what()).c_str());
    }
    return status;
}

}  // namespace

int RunProgram(const char* name, int failed, const std::function<int()>& work) {
    try {
        return work();
    } catch (const UsageError& error) {
        return Tell(name, error, STATUS_USAGE);
    } catch (const TimeError& error) {
        return Tell(name, error, STATUS_USAGE);
    } catch (const std::exception& error) {
        return Tell(name, error, failed);
    }
}

}  // namespace cli
