#include "host/console/time_arguments.h"

#include <cstdio>
#include <ctime>
#include <map>

#include "text/time_words.h"

namespace {
// At which word of its line a command's START stands; END stands behind it.
const std::map<std::string, size_t> PLACES_OF_START = {
    {"simudetect", 1}, {"delaydetect", 1},     {"delayanal", 1},   {"showallerr", 1}, {"errcodeshowall", 1},
    {"datashow", 2},   {"showfaultfactor", 2}, {"errcodeshow", 3}, {"showgraph", 3}};
}  // namespace

Words WithCompactTimes(Words words) {
    const auto place = PLACES_OF_START.find(words.front());
    if (place == PLACES_OF_START.end()) {
        return words;
    }
    try {
        const std::string understood = TurnRange(words, place->second, ClockAt(std::time(nullptr)));
        if (!understood.empty()) {
            std::fprintf(stderr, "%s\n", understood.c_str());
        }
    } catch (const TimeError& error) {
        throw UsageError(error.what());
    }
    return words;
}
