// The tables of one analysis.
#pragma once

#include <cstdint>

#include "explain/analysis/analysis.h"
#include "explain/page/markup.h"
#include "explain/report.h"

namespace explain {

// The other events of the point that are only listed, the latest ones of many; empty where there is none.
Markup EventTable(const Analysis& analysis, const Report& report);

// The share as a figure and as a length.
Markup ShareCell(double share);

// For an answer.
Markup RankingTable(const Analysis& analysis);
Markup TrialTable(const Analysis& analysis);

// What is known of each point: of those with a part at once, of the others behind a line to open.
Markup EvidenceTables(const Analysis& analysis, int64_t zoneOffset);

}  // namespace explain
