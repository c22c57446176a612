// How sure an answer is.
#pragma once

#include "explain/analysis/analysis.h"

namespace explain {

// Of an analysis with candidates, a baseline and an event.
Certainty CertaintyOf(const Analysis& analysis);

}  // namespace explain
