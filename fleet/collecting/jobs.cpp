#include "fleet/collecting/jobs.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <mutex>
#include <stdexcept>
#include <thread>

#include "fleet/answers/answer_reader.h"
#include "fleet/collecting/reply.h"
#include "host/process/child.h"
#include "host/process/interrupt.h"

namespace fleet {
namespace {

constexpr const char* PROGRAM = "zorv-explain";

Reply Run(const std::vector<std::string>& words, std::chrono::seconds time) {
    Reply reply;
    try {
        const zorv::ChildEnd end =
            zorv::RunChild(zorv::ProgramBeside(PROGRAM), words, {&reply.output, &reply.errors},
                           {time, MOST_ANSWER_BYTES, true});
        reply.status = end.status;
        if (end.isLate) {
            reply.failure =
                "it took longer than " + std::to_string(time.count()) + " s; --timeout gives it more";
        } else if (end.signal != 0) {
            reply.failure = std::string(PROGRAM) + " was ended by signal " + std::to_string(end.signal);
        }
    } catch (const std::runtime_error& error) {
        reply.failure = error.what();
    }
    return reply;
}

}  // namespace

void RunJobs(const std::vector<std::vector<std::string>>& jobs, const JobLimits& limits,
             const std::set<std::string>* points, const std::function<void(size_t, NodeAnswer)>& take,
             const Progress& progress) {
    const zorv::TidyEnd tidy({SIGINT, SIGTERM, SIGHUP});
    std::atomic<size_t> next{0};
    std::mutex oneAtATime;
    size_t done = 0;
    const auto work = [&] {
        for (size_t job = next++; job < jobs.size() && !zorv::IsEndAsked(); job = next++) {
            NodeAnswer answer = AnswerOf(Run(jobs[job], limits.time), points);
            const std::lock_guard<std::mutex> lock(oneAtATime);
            take(job, std::move(answer));
            progress(++done);
        }
    };
    std::vector<std::thread> workers;
    for (size_t i = 0; i < std::min(limits.atATime, jobs.size()); ++i) {
        workers.emplace_back(work);
    }
    for (std::thread& worker : workers) {
        worker.join();
    }
}

}  // namespace fleet
