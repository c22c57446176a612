// The two looks, and what comes of them.
#pragma once

#include "fleet/folding/outcome.h"
#include "fleet/source.h"

namespace fleet {

// Asks for the answers, folds them, asks every node about the windows of the incidents, and folds what is
// known then. Blocks.
Outcome AskTwice(Source& source);

}  // namespace fleet
