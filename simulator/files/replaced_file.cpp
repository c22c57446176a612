#include "simulator/files/replaced_file.h"

#include <fstream>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace lumosim {
namespace fs = std::filesystem;

ReplacedFile::ReplacedFile(fs::path file) : target(std::move(file)), newPath(target) {
    newPath += ".new";
    fs::create_directories(target.parent_path());
    fs::remove(newPath);
}

ReplacedFile::ReplacedFile(ReplacedFile&& other) noexcept
    : target(std::move(other.target)), newPath(std::exchange(other.newPath, {})) {}

ReplacedFile::~ReplacedFile() {
    if (!newPath.empty()) {
        std::error_code ignored;
        fs::remove(newPath, ignored);
    }
}

void ReplacedFile::Write(const std::string& text) const {
    std::ofstream stream(newPath, std::ios::binary);
    stream << text;
    stream.close();
    if (!stream) {
        throw std::runtime_error("cannot write " + newPath.string());
    }
}

void ReplacedFile::Commit() {
    RemoveJournals(target);
    fs::rename(newPath, target);
    newPath.clear();
}

void RemoveJournals(const fs::path& database) {
    for (const char* suffix : {"-journal", "-wal", "-shm"}) {
        fs::remove(database.string() + suffix);
    }
}

}  // namespace lumosim
