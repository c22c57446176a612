// Where the nodes' answers come from.
#pragma once

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "fleet/answers/answer.h"
#include "fleet/options.h"

namespace fleet {

// What the second look asks: in which windows, and at which points besides those at which hosts enter.
struct SecondLook {
    std::vector<Window> windows;
    std::set<std::string> points;
};

class Source {
public:
    Source() = default;
    virtual ~Source() = default;
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    // One answer for each node, each with a name of its own. Blocks.
    virtual std::vector<NodeAnswer> First() = 0;

    // Asks every node that has answered, in every window; `take` gets the position of the window and of the
    // node. Where nobody can be asked again it does nothing. Blocks.
    virtual void Again(const std::vector<NodeAnswer>& answers, const SecondLook& look,
                       const std::function<void(size_t, size_t, NodeAnswer)>& take);

    // The page that a node has of its own, by its position; empty: none.
    virtual std::string PageOf(size_t node) const;
};

// As the command line says. Throws cli::UsageError and HostsError.
std::unique_ptr<Source> SourceOf(const Options& options);

}  // namespace fleet
