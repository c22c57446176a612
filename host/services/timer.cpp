#include "host/services/timer.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "agent/agent_timer.h"
#include "host/process/immortal.h"
#include "host/services/log.h"
#include "host/services/thread.h"

namespace zorv {
namespace {
// One thread per task: tasks are few, and none may delay another.
class TimerThreads {
public:
    bool Add(const ZORV_TIMER_TASK_S& task) {
        const std::lock_guard<std::mutex> lock(mutex);
        if (stopped) {
            return false;
        }
        threads.reserve(threads.size() + 1);
        threads.push_back(StartThread([this, task] { Run(task); }));
        return true;
    }

    void Stop() {
        {
            const std::lock_guard<std::mutex> lock(mutex);
            stopped = true;
        }
        changed.notify_all();
        for (std::thread& thread : threads) {
            thread.join();
        }
        threads.clear();
    }

private:
    void Run(const ZORV_TIMER_TASK_S& task) {
        while (WaitOnePeriod(task.period)) {
            Guarded("timer task", 0, [&] {
                task.callback(task.arg);
                return 0;
            });
            if (task.periodic == 0) {
                return;
            }
        }
    }

    // Returns false when the service stopped meanwhile.
    bool WaitOnePeriod(uint64_t milliseconds) {
        constexpr uint64_t LONGEST =
            uint64_t{1000} * 86400 * 36500;  // a century; the clock's range ends at three
        const std::chrono::milliseconds period(static_cast<int64_t>(std::min(milliseconds, LONGEST)));
        std::unique_lock<std::mutex> lock(mutex);
        return !changed.wait_for(lock, period, [this] { return stopped; });
    }

    std::mutex mutex;
    std::condition_variable changed;
    bool stopped = false;
    std::vector<std::thread> threads;
};

TimerThreads& Timers() {
    static TimerThreads& timers = MakeImmortal<TimerThreads>();
    return timers;
}

uint32_t AddTask(const ZORV_TIMER_TASK_S& task, uint32_t module, const char* function, uint32_t line) {
    const std::string name(task.name, strnlen(task.name, sizeof task.name));
    const bool added = task.callback != nullptr && task.period > 0 && Timers().Add(task);
    const uint32_t level = added ? VPLOG_LEVEL_INFO : VPLOG_LEVEL_ERROR;
    HOST_LOG(level, "timer task %s of module %u (%s, line %u) %s", name.c_str(), module,
             function == nullptr ? "" : function, line, added ? "added" : "refused");
    return added ? 0 : 1;
}
}  // namespace

void StopTimers() {
    Timers().Stop();
}
}  // namespace zorv

uint32_t ZORV_ThreadPoolAddTimerTaskSub(ZORV_TIMER_TASK_S* task, uint32_t module, const char* function,
                                        uint32_t line) {
    if (task == nullptr) {
        return 1;
    }
    return zorv::Guarded("timer", 1U, [=] { return zorv::AddTask(*task, module, function, line); });
}
