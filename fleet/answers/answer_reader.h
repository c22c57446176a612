// Reading what zorv-explain prints with --json.
#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <string_view>

#include "fleet/answers/answer.h"
#include "fleet/answers/kept_members.h"

namespace fleet {

// No document may be as long: a few kilobytes are usual.
constexpr size_t MOST_ANSWER_BYTES = size_t{1} << 26;

// The answer that the JSON document `json` is; members that are not known are passed over. Its name is empty
// where the document has none. With `points`, it has the delays of these and of the points at which hosts
// enter. Throws AnswerError when it is no such document. Any thread.
NodeAnswer ReadAnswer(std::string_view json, const std::set<std::string>* points = nullptr);

}  // namespace fleet
