// What the services of this process are set up with.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace zorv {
struct HostSettings {
    std::string root;     // a directory that stands before every fixed path; empty: none
    uint32_t node = 1;    // this node's id
    uint32_t master = 1;  // the id of the cluster's master node
    std::chrono::milliseconds messageDeadline{3000};  // how long a request waits for its answer
    // The capture that `root` stands for, a directory in which nothing may change.
    std::optional<std::string> capture = std::nullopt;
    // The files of it that are elsewhere than below that directory, by their fixed paths.
    std::map<std::string, std::string> movedFiles{};
};

// Replaces the settings (at first the defaults). Not thread-safe: call it before other threads use a service.
void SetHostSettings(const HostSettings& settings);

// The settings, valid as long as the process. Any thread.
const HostSettings& GetHostSettings();

// `path` as it is found under the root.
std::string RootedPath(const std::string& path);

// The same as the operator knows it: in a capture's own directory. To look at, never to write.
std::string GivenPath(const std::string& path);

// What to tell an operator who works without a root on a machine that has none of the storage system's files;
// empty anywhere else.
std::string AdviceWithoutFiles();
}  // namespace zorv
