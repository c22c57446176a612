#include "host/services/failed_queries.h"

#include <cstring>
#include <utility>

#include "host/process/statements.h"

namespace zorv {
namespace {
constexpr const char* GIVEN_UP = "donot retry again";

thread_local FailedQueries g_failed;
}  // namespace

void CountFailedQuery(const char* logFormat) {
    if (std::strstr(logFormat, GIVEN_UP) != nullptr) {
        ++g_failed.count;
        g_failed.reason = FailedStatements();
    }
}

FailedQueries TakeFailedQueries() {
    return std::exchange(g_failed, {});
}
}  // namespace zorv
