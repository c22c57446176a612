// Members whose names are misspelt, or that stand at the wrong place.
#pragma once

#include <string>

#include "check/graph/model.h"

namespace check {

// The value of a member of the node, or of its info, that the plug-in does not read and that was probably
// meant as the member `name` of info; null: there is none.
Member MisspeltMember(const Node& node, const std::string& name);

}  // namespace check
