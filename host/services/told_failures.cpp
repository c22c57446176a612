#include "host/services/told_failures.h"

#include <atomic>
#include <cstring>
#include <utility>

#include "host/process/statements.h"

namespace zorv {
namespace {
constexpr const char* GIVEN_UP = "donot retry again";
constexpr const char* REFUSED = "Json spectrum pasrse failed";

thread_local FailedQueries g_failed;
std::atomic<bool> g_configurationRefused{false};
}  // namespace

void NoteFailure(const char* logFormat) {
    if (std::strstr(logFormat, GIVEN_UP) != nullptr) {
        ++g_failed.count;
        g_failed.reason = FailedStatements();
    } else if (std::strstr(logFormat, REFUSED) != nullptr) {
        g_configurationRefused = true;
    }
}

FailedQueries TakeFailedQueries() {
    return std::exchange(g_failed, {});
}

bool IsConfigurationRefused() {
    return g_configurationRefused;
}
}  // namespace zorv
