// JSON documents of the console's own commands, as docs/zorv-local.schema.json describes them.
#pragma once

#include <json/value.h>

#include <cstdint>
#include <string>

namespace zorv {
// A time with its seconds and its local time, which is null where the calendar has none.
Json::Value TimeValue(int64_t time);

// Valid UTF-8, whatever `text` holds.
Json::Value TextValue(const std::string& text);

// The same; empty text stands for what is not known.
Json::Value TextOrNull(const std::string& text);

Json::Value NumberValue(uint64_t number);

// Prints the document of a command, on one line: its answer, or null and the problem that kept it from one.
void PrintDocument(const std::string& command, const Json::Value& answer, const std::string& problem = {});
}  // namespace zorv
