#include "explain/watch/lookout.h"

#include <unistd.h>

#include <ctime>
#include <stdexcept>

#include "agent/agent_storage.h"
#include "explain/request.h"
#include "explain/survey.h"
#include "fault_common/fault_path.h"
#include "host/process/interrupt.h"

namespace explain {
namespace {

constexpr const char* RANGE_MINUTES = "60";

}  // namespace

Lookout::Lookout(const Options& asked, const Input& toRead) : options(asked), input(toRead) {
    options.times = {RANGE_MINUTES};
}

Sight Lookout::Look() {
    const LocalClock clock = ClockAt(std::time(nullptr));
    Request request = RequestOf(options, clock);
    for (PointRequest& point : request.points) {
        point.when = PointRequest::IF_SLOW;
    }
    Sight sight;
    sight.report.node = options.node;
    sight.report.again = AgainOf(options);
    sight.report.question = request.question;
    sight.report.zoneOffset = request.zoneOffset;
    sight.report.madeAt = clock.time;
    const zorv::SingleTry once;
    try {
        Open();
        stores.samples.MoveTo(StretchesOf(request.question).front());
        Survey(request, stores, sight.report);
    } catch (...) {
        sight.failure = ReasonOfFailure();
        isOpen = false;
        sight.failed = openingFailure.empty() ? once.Why() : openingFailure;
        if (sight.failed.empty() && access(FaultPath(LUMO_DATABASE_FILE).c_str(), F_OK) != 0) {
            sight.failed = "it is not there";  // it went while it was read
        }
    }
    return sight;
}

// Throws NoData when that fails; `openingFailure` says why.
void Lookout::Open() {
    openingFailure.clear();
    if (isOpen) {
        return;
    }
    try {
        input.OpenDatabases();
    } catch (const std::runtime_error& error) {
        openingFailure = error.what();
        throw NoData({ReasonKind::UNREADABLE_DATABASE});
    }
    isOpen = true;
}

}  // namespace explain
