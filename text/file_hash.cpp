#include "text/file_hash.h"

#include <openssl/evp.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <memory>
#include <vector>

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
}  // namespace

std::string HashOfFile(const std::string& path) {
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
