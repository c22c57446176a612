// Explanations on other machines, by GNU parallel over ssh.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "fleet/answers/answer.h"

namespace fleet {

// Nothing can be asked at all; what() tells the operator why and what to do.
class HostsError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct HostLimits {
    size_t atATime = 0;            // hosts; 0: all
    std::chrono::seconds time{0};  // for each; none when 0
};

// The hosts of `file`, a line each, or several with commas, as parallel's --sshloginfile takes them: ":" is
// this machine, "#" begins a comment. Throws HostsError for a file that cannot be read or has none.
std::vector<std::string> ReadHosts(const std::string& file);

// Runs zorv-explain with the words on each host; it is looked for in PATH there. Returns the answers by host;
// those of hosts that cannot be reached have a failure. `points` as ReadAnswer() takes them; `progress` is
// told which part of the hosts has ended. ssh asks nobody for anything. Blocks until all have ended. Throws
// HostsError where there is no GNU parallel.
std::map<std::string, NodeAnswer> AskHosts(const std::vector<std::string>& hosts,
                                           const std::vector<std::string>& words, const HostLimits& limits,
                                           const std::set<std::string>* points,
                                           const std::function<void(double)>& progress);

}  // namespace fleet
