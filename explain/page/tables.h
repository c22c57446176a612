// The tables of one analysis.
#pragma once

#include <cstdint>

#include "explain/analysis/analysis.h"
#include "explain/page/markup.h"

namespace explain {

// The runs of high samples, the latest ones of many; empty where there is none beside the explained one.
Markup EventTable(const Analysis& analysis, int64_t zoneOffset);

// For an answer.
Markup RankingTable(const Analysis& analysis);
Markup TrialTable(const Analysis& analysis);

// What is known of each point: of those with a part at once, of the others behind a line to open.
Markup EvidenceTables(const Analysis& analysis, int64_t zoneOffset);

}  // namespace explain
