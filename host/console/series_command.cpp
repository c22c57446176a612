#include "host/basis/route_file.h"
#include "host/console/commands.h"
#include "host/console/explain_program.h"

namespace zorv {
ExitStatus RunSeries(const Words& words, ConsoleState& state) {
    if (words.size() < 3) {
        throw UsageError("series takes a point, and START END or MINUTES");
    }
    Words arguments = {"--series"};
    arguments.insert(arguments.end(), words.begin() + 1, words.end());
    return RunExplainProgram(state.sharedOptions, arguments);
}

Words WordsAfterSeries(const Words& before) {
    if (before.size() == 1) {
        return PointNames(CurrentRouteFile());
    }
    return before.back() == "--columns" ? Words{"avgdelay",   "maxdelay",  "mindelay", "acceptnum",
                                                "successnum", "failednum", "retrynum", "errCode0"}
                                        : Words{"--columns", "--json", "now", "today", "yesterday"};
}
}  // namespace zorv
