// What has changed of errors and healings from one look to the next.
#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <string>

#include "explain/change.h"
#include "explain/report.h"

namespace explain {

// Knows what was told, by type of errors: all events of a type together are one.
class ErrorChanges {
public:
    // Appends what has changed since the report before. Of the first one only what goes on is told.
    void After(const Report& report, ChangeList& changes);

private:
    static constexpr int64_t NEVER = std::numeric_limits<int64_t>::min();

    struct State {
        bool isOn = false;
        int64_t begin = 0;
        int64_t end = NEVER;  // the last interval with too many that was told
        int64_t count = 0;    // errors until then
        std::string type;
    };

    void TellOfErrors(const Report& report, const ErrorAnalysis& newest, State& state,
                      ChangeList& changes) const;
    static void TellOfEnd(const Report& report, State& state, ChangeList& changes);
    void TellOfHealings(const Report& report, ChangeList& changes);

    std::map<int32_t, State> types;
    std::optional<int64_t> seen;    // the newest row of the report before
    std::optional<int64_t> healed;  // the newest healing that was told, or there was at first
};

}  // namespace explain
