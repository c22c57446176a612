#include "explain/report.h"

#include <json/version.h>
#include <openssl/evp.h>
#include <sqlite3.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <memory>

#include "agent/agent_storage.h"

namespace explain {
namespace {

constexpr size_t BLOCK = size_t{1} << 16;

std::string Hexadecimal(const unsigned char* bytes, size_t count) {
    static constexpr char DIGITS[] = "0123456789abcdef";
    std::string text;
    for (size_t i = 0; i < count; ++i) {
        text += DIGITS[bytes[i] / 16];
        text += DIGITS[bytes[i] % 16];
    }
    return text;
}

std::string HashOf(const std::string& path) {
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(path, ignored)) {  // to open a pipe would wait for a writer
        return {};
    }
    std::ifstream file(path, std::ios::binary);
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
    if (!file || context == nullptr || EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr) != 1) {
        return {};
    }
    std::vector<char> block(BLOCK);
    while (file.read(block.data(), static_cast<std::streamsize>(block.size())) || file.gcount() > 0) {
        EVP_DigestUpdate(context.get(), block.data(), static_cast<size_t>(file.gcount()));
    }
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned int length = 0;
    const bool complete = file.eof() && EVP_DigestFinal_ex(context.get(), digest.data(), &length) == 1;
    return complete ? Hexadecimal(digest.data(), length) : std::string();
}

// As a shell takes it back.
std::string Quoted(const std::string& word) {
    static constexpr const char* PLAIN =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_-+=:,./@%";
    if (!word.empty() && word.find_first_not_of(PLAIN) == std::string::npos) {
        return word;
    }
    std::string quoted = "'";
    for (const char letter : word) {
        quoted += letter == '\'' ? "'\\''" : std::string(1, letter);
    }
    return quoted + "'";
}

}  // namespace

std::string ShellLine(const std::vector<std::string>& words) {
    std::string line;
    for (const std::string& word : words) {
        line += (line.empty() ? "" : " ") + Quoted(word);
    }
    return line;
}

Stamp MakeStamp(const std::vector<std::string>& arguments, const std::string& directory) {
    Stamp stamp;
    stamp.program = EXPLAIN_VERSION;
    stamp.sqlite = sqlite3_libversion();
    stamp.jsoncpp = JSONCPP_VERSION_STRING;
    stamp.configurationHash = HashOf(directory + ZORV_ROUTE_CONFIG_FILE);
    stamp.databaseHash = HashOf(directory + LUMO_DATABASE_FILE);
    stamp.command = ShellLine(arguments);
    return stamp;
}

}  // namespace explain
