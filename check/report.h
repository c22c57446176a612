// The findings in the forms in which they are told.
#pragma once

#include <string>

#include "check/graph/model.h"
#include "check/rules/finding.h"

namespace check {

// A line for each finding, in the order of the document, and one that counts. `file`: the configuration's
// path as the operator gave it.
std::string TextReport(const std::string& file, const Model& model, const Findings& findings);

// The same as one JSON document, see docs/check.schema.json.
std::string JsonReport(const std::string& file, const Model& model, const Findings& findings);

// The rules: severity, name and reason, a line each.
std::string RuleList();

}  // namespace check
