// Explanations on this machine, several at a time.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "fleet/answers/answer.h"

namespace fleet {

struct JobLimits {
    size_t atATime = 1;
    std::chrono::seconds time{0};  // for each; none when 0
};

// Told after each job: how many are done.
using Progress = std::function<void(size_t)>;

// Runs zorv-explain, the one beside this program, once with each list of words, and hands each answer to
// `take`, with the job's position, in the order in which they end; what cannot be run is an answer with a
// failure. `take` and `progress` are called by one thread at a time. Blocks until all have ended. `points` as
// ReadAnswer() takes them. A signal that ends this process ends them before.
void RunJobs(const std::vector<std::vector<std::string>>& jobs, const JobLimits& limits,
             const std::set<std::string>* points, const std::function<void(size_t, NodeAnswer)>& take,
             const Progress& progress);

}  // namespace fleet
