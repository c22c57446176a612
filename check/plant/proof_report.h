// A proof in the forms in which it is told.
#pragma once

#include <string>

#include "check/plant/proof.h"

namespace check {

// A row for each site, how many are found, and what is not, with the reason.
std::string ProofText(const Proof& proof);

// The same as one JSON document, see docs/check-plant.schema.json. `file`: the configuration's path as the
// operator gave it.
std::string ProofJson(const std::string& file, const Proof& proof);

}  // namespace check
