#include "host/version.h"

#include <dlfcn.h>
#include <json/version.h>
#include <json/writer.h>
#include <sqlite3.h>

#include <filesystem>

namespace zorv {
namespace {
// jsoncpp does not tell; the name of its file, behind all links, does.
std::string JsonVersion() {
    Dl_info info{};
    const auto* const ofLibrary = reinterpret_cast<const void*>(&Json::valueToQuotedString);
    if (dladdr(ofLibrary, &info) == 0 || info.dli_fname == nullptr) {
        return JSONCPP_VERSION_STRING;
    }
    std::error_code error;
    const std::string file = std::filesystem::canonical(info.dli_fname, error).filename();
    const size_t number = file.find(".so.");
    return error || number == std::string::npos ? JSONCPP_VERSION_STRING : file.substr(number + 4);
}
}  // namespace

std::string VersionText() {
    return std::string("zorv-local " ZORV_LOCAL_VERSION "\nSQLite ") + sqlite3_libversion() + "\njsoncpp " +
           JsonVersion();
}
}  // namespace zorv
