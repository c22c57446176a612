// A directory of a test's own, gone with the test.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

class TempRoot {
public:
    TempRoot() : directory((std::filesystem::temp_directory_path() / "host_test.XXXXXX").string()) {
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

    std::string Write(const std::string& name, const std::string& content) const {
        std::filesystem::create_directories(std::filesystem::path(Path(name)).parent_path());
        std::ofstream(Path(name), std::ios::binary) << content;
        return Path(name);
    }

    std::string Read(const std::string& name) const {
        std::ostringstream content;
        content << std::ifstream(Path(name), std::ios::binary).rdbuf();
        return content.str();
    }

private:
    std::string directory;
};
