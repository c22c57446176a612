#include <algorithm>

#include "host/basis/route_file.h"
#include "host/console/commands.h"
#include "host/console/explain_program.h"

namespace zorv {
namespace {
constexpr const char* HOSTS = "hosts";  // all points at which hosts enter
}  // namespace

ExitStatus RunExplain(const Words& words, ConsoleState& state) {
    return RunExplainProgram(state.sharedOptions, {words.begin() + 1, words.end()});
}

Words WordsAfterExplain(const Words& before) {
    const std::string& last = before.back();
    if (last == "--point") {
        Words points = PointNames(CurrentRouteFile());
        points.emplace_back(HOSTS);
        return points;
    }
    if (last == "--graph") {
        return GraphNames(CurrentRouteFile());
    }
    if (last == "--at" || last == "--during") {
        return {"now", "today", "yesterday"};
    }
    if (last == "--baseline") {
        return {"yesterday", "-7d"};
    }
    const Words takeAnything = {"--node", "--html", "--log", "--zone"};
    if (std::find(takeAnything.begin(), takeAnything.end(), last) != takeAnything.end()) {
        return {};
    }
    return {"--point", "--graph",    "--at",   "--during", "--baseline", "--node",
            "--zone",  "--overview", "--json", "--html",   "--help"};
}
}  // namespace zorv
