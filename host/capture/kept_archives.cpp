#include "host/capture/kept_archives.h"

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <system_error>

#include "host/capture/archive.h"

namespace zorv {
namespace {
namespace fs = std::filesystem;

constexpr const char* DIRECTORY_VARIABLE = "ZORV_ARCHIVES";
constexpr const char* RESERVE_VARIABLE = "ZORV_ARCHIVES_RESERVE";  // bytes that stay free

uintmax_t FreeIn(const fs::path& directory) {
    std::error_code error;
    const fs::space_info space = fs::space(directory, error);
    return error ? 0 : space.available;
}

// Of the file as it is now: one that is replaced is another one. None where nobody asks for it.
std::optional<fs::path> KeptPlaceOf(const std::string& archive) {
    const char* const directory = std::getenv(DIRECTORY_VARIABLE);
    struct stat file {};
    if (directory == nullptr || stat(archive.c_str(), &file) != 0) {
        return std::nullopt;
    }
    std::string name;
    for (const auto number :
         {static_cast<uintmax_t>(file.st_dev), static_cast<uintmax_t>(file.st_ino),
          static_cast<uintmax_t>(file.st_size), static_cast<uintmax_t>(file.st_mtim.tv_sec),
          static_cast<uintmax_t>(file.st_mtim.tv_nsec)}) {
        name += (name.empty() ? "" : "-") + std::to_string(number);
    }
    return fs::path(directory) / name;
}

bool HasRoom(const fs::path& directory) {
    const char* const reserve = std::getenv(RESERVE_VARIABLE);
    return reserve != nullptr && FreeIn(directory) >= std::strtoull(reserve, nullptr, 10);
}
}  // namespace

void KeepArchivesIn(const std::string& directory) {
    setenv(DIRECTORY_VARIABLE, directory.c_str(), 1);
    setenv(RESERVE_VARIABLE, std::to_string(FreeIn(directory) / 2).c_str(), 1);
}

std::string UnpackOnce(const std::string& archive, const std::string& directory) {
    const std::optional<fs::path> kept = KeptPlaceOf(archive);
    std::error_code error;
    if (kept && fs::is_directory(*kept, error)) {
        return *kept;
    }
    fs::create_directory(directory);
    Unpack(archive, directory);
    if (kept && HasRoom(kept->parent_path())) {
        fs::rename(directory, *kept, error);  // whole or not at all
        return error ? directory : kept->string();
    }
    return directory;
}
}  // namespace zorv
