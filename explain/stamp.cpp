#include "explain/report.h"

#include <json/version.h>
#include <sqlite3.h>

#include "text/file_hash.h"
#include "text/shell_word.h"

namespace explain {
std::string ShellLine(const std::vector<std::string>& words) {
    std::string line;
    for (const std::string& word : words) {
        line += (line.empty() ? "" : " ") + ShellWord(word);
    }
    return line;
}

Stamp MakeStamp(const std::vector<std::string>& arguments, const std::string& configuration,
                const std::string& database) {
    Stamp stamp;
    stamp.program = EXPLAIN_VERSION;
    stamp.sqlite = sqlite3_libversion();
    stamp.jsoncpp = JSONCPP_VERSION_STRING;
    stamp.configurationHash = HashOfFile(configuration);
    stamp.databaseHash = HashOfFile(database);
    stamp.command = ShellLine(arguments);
    return stamp;
}

}  // namespace explain
