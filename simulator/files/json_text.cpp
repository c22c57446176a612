#include "simulator/files/world_files.h"

namespace lumosim {

std::string JsonText(const Json::Value& value) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "    ";
    builder["enableYAMLCompatibility"] = true;  // no blank before a colon
    const std::string written = Json::writeString(builder, value);
    // The writer begins a line for every opening bracket. A string inside the text has no line ends.
    constexpr char BROKEN_LINE[] = ": \n";
    std::string text;
    size_t from = 0;
    for (size_t colon; (colon = written.find(BROKEN_LINE, from)) != std::string::npos;) {
        text.append(written, from, colon + 2 - from);
        from = written.find_first_not_of(" \n", colon + 2);
    }
    return text.append(written, from, std::string::npos) + "\n";
}

}  // namespace lumosim
