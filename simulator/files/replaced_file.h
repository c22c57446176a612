// A file that is written beside the one it replaces, so that a reader finds the old one or the new one,
// whole, at any time.
#pragma once

#include <filesystem>
#include <string>

namespace lumosim {

class ReplacedFile {
public:
    // Creates the folder of `target` and in it the new file, empty, under a name that was free, with the mode
    // of the old file, if any, and its owner where that may be set. Removes what interrupted runs left there.
    // Throws std::system_error, also where `target` is a folder.
    explicit ReplacedFile(std::filesystem::path target);
    // Removes the new file unless it was committed.
    ~ReplacedFile();
    ReplacedFile(ReplacedFile&& other) noexcept;
    ReplacedFile(const ReplacedFile&) = delete;
    ReplacedFile& operator=(const ReplacedFile&) = delete;
    ReplacedFile& operator=(ReplacedFile&&) = delete;

    // Where the new file is to be written.
    const std::filesystem::path& NewPath() const { return newPath; }
    // Writes `text` as the new file. Throws std::runtime_error.
    void Write(const std::string& text) const;
    // Puts the new file in the old one's place. A database's journals of the old file go with it. Throws
    // std::system_error.
    void Commit();

private:
    std::filesystem::path target;
    std::filesystem::path newPath;  // empty: committed or moved away
};

// Removes the journals of a database that is not open, which would be rolled back into another one in its
// place. Throws std::filesystem::filesystem_error.
void RemoveJournals(const std::filesystem::path& database);

}  // namespace lumosim
