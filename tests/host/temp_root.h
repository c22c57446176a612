// A directory of a test's own, gone with the test.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

class TempRoot {
public:
    TempRoot() {
        if (mkdtemp(directory.data()) == nullptr) {
            std::abort();
        }
    }
    ~TempRoot() {
        std::error_code ignored;
        std::filesystem::remove_all(directory, ignored);
    }
    TempRoot(const TempRoot&) = delete;
    TempRoot& operator=(const TempRoot&) = delete;

    std::string Path(const std::string& name = "") const { return directory + name; }

    void Write(const std::string& name, const std::string& content) const {
        std::filesystem::create_directories(std::filesystem::path(Path(name)).parent_path());
        std::ofstream(Path(name), std::ios::binary) << content;
    }

    std::string Read(const std::string& name) const {
        std::ostringstream content;
        content << std::ifstream(Path(name), std::ios::binary).rdbuf();
        return content.str();
    }

private:
    // In memory: thousands of fsync() calls would be waited for on a disk.
    std::string directory =
        std::filesystem::exists("/dev/shm") ? "/dev/shm/host_test.XXXXXX" : "/tmp/host_test.XXXXXX";
};
