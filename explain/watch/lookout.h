// One look after the other at what the statistics have of the last hour.
#pragma once

#include <string>

#include "explain/input.h"
#include "explain/options.h"
#include "explain/survey.h"
#include "explain/watch/changes.h"

namespace explain {

class Lookout {
public:
    // Of the options, points, graph and node count. Both must outlive it.
    Lookout(const Options& options, const Input& input);

    // Looks at the last hour, by this machine's clock; opens the databases where they are not open. What it
    // has loaded before it keeps. Tries nothing a second time, so it does not wait for a writer. Ends early
    // when the calling thread's command, which there has to be, is interrupted: then the sight says nothing.
    // Throws cli::UsageError for points and graphs that are not known.
    Sight Look();

private:
    void Open();

    Options options;
    const Input& input;
    Stores stores;
    bool isOpen = false;
    std::string openingFailure;  // of the last look
};

}  // namespace explain
