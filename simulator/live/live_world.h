// A world that goes on in time.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "simulator/files/world.h"
#include "simulator/live/live_options.h"

namespace lumosim {

// Called for everything that happens, with the storage system's time, UTC.
using EventListener = std::function<void(int64_t time, const std::string& event)>;

// Writes the world of `options`, as WriteWorld() does, whose faults of the second half are yet to come; then
// adds the samples of every instant when its time has come, until the duration is over or SIGINT or SIGTERM
// comes. SIGHUP re-creates the statistics database. The process must have one thread. Throws as WriteWorld(),
// and std::runtime_error when a sample cannot be written.
void PlayWorld(const WorldOptions& options, const LiveOptions& live, const EventListener& tell,
               const Progress& progress);

}  // namespace lumosim
