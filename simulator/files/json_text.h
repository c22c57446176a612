// JSON as the simulator's files have it.
#pragma once

#include <json/json.h>

#include <string>

namespace lumosim {

// Indented by four blanks, opening brackets behind their keys, with a line end after the last line.
std::string JsonText(const Json::Value& value);

}  // namespace lumosim
