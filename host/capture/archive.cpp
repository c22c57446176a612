#include "host/capture/archive.h"

#include <archive.h>
#include <archive_entry.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>
#include <system_error>

#include "host/capture/captured_database.h"
#include "host/process/files.h"

namespace zorv {
namespace {
namespace fs = std::filesystem;

constexpr size_t BLOCK = 1 << 20;               // of the archive, in bytes
constexpr uint64_t SMALL_ENOUGH = 64ULL << 20;  // whatever its ratio
constexpr mode_t FOR_THE_OWNER = 0600;
constexpr const char* COPY_AGAIN = " Copy it from where it was made again.";

struct ReaderDeleter {
    void operator()(archive* reader) const { archive_read_free(reader); }
};

// Unpacks one archive.
class Unpacking {
public:
    Unpacking(const std::string& from, const std::string& to, const ArchiveBounds& most)
        : name(from), directory(to), bounds(most), reader(archive_read_new()) {}

    void Run() {
        Open();
        archive_entry* entry = nullptr;
        while (Read(archive_read_next_header(reader.get(), &entry)) != ARCHIVE_EOF) {
            if (++entries > bounds.entries) {
                throw CaptureError(name + " has more than " + std::to_string(bounds.entries) +
                                   " entries, far more than a node has files.");
            }
            Take(*entry);
        }
    }

private:
    // Other formats and filters of the library are not wanted: each is more code that reads what comes from
    // anywhere.
    void Open() {
        archive_read_support_format_tar(reader.get());
        archive_read_support_filter_gzip(reader.get());
        archive_read_support_filter_xz(reader.get());
        archive_read_support_filter_zstd(reader.get());
        if (archive_read_open_filename(reader.get(), name.c_str(), BLOCK) != ARCHIVE_OK) {
            throw CaptureError(name + " cannot be read as a tar archive: " + Reason() + ".");
        }
    }

    std::string Reason() const {
        const char* const reason = archive_error_string(reader.get());
        return reason == nullptr ? "no reason is known" : reason;
    }

    int Read(int status) const {
        if (status < ARCHIVE_WARN) {
            throw CaptureError(name + " cannot be unpacked, it is no tar archive, cut short or damaged: " +
                               Reason() + "." + COPY_AGAIN);
        }
        return status;
    }

    // As little as possible of the name is taken over: its words.
    fs::path PlaceOf(const fs::path& named) const {
        fs::path place = directory;
        for (const fs::path& word : named) {
            if (word == "..") {
                Refuse(named, "its name leads out of its folder");
            }
            if (!word.empty() && word != ".") {
                place /= word;
            }
        }
        return place;
    }

    [[noreturn]] void Refuse(const fs::path& entry, const char* why) const {
        throw CaptureError(name + " is not unpacked: of '" + entry.string() + "', " + why +
                           ". An archive of a node has folders and ordinary files with relative names.");
    }

    void Take(archive_entry& entry) {
        const char* const named = archive_entry_pathname(&entry);
        const fs::path path = named == nullptr ? "" : named;
        if (path.empty() || path.is_absolute()) {
            Refuse(path, "its name is absolute, or none");
        }
        const fs::path place = PlaceOf(path);
        const bool isLink =
            archive_entry_hardlink(&entry) != nullptr || archive_entry_symlink(&entry) != nullptr;
        const auto type = archive_entry_filetype(&entry);
        if (isLink || (type != AE_IFREG && type != AE_IFDIR)) {
            Refuse(path, "it is a link, a device or a pipe");
        }
        std::error_code error;
        fs::create_directories(type == AE_IFDIR ? place : place.parent_path(), error);
        if (error) {
            throw CaptureError(name + " cannot be unpacked: the folder of " + place.string() +
                               " cannot be made: " + error.message() + ".");
        }
        if (type == AE_IFREG) {
            TakeFile(entry, place);
        }
    }

    void TakeFile(archive_entry& entry, const fs::path& place) {
        const OwnedFd file(
            open(place.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_CLOEXEC, FOR_THE_OWNER));
        Check(static_cast<bool>(file), place);
        const int64_t size = archive_entry_size(&entry);
        CheckBounds(size);  // before the first byte; the rest as it comes
        int64_t end = 0;
        const void* data = nullptr;
        size_t count = 0;
        for (la_int64_t offset = 0;
             Read(archive_read_data_block(reader.get(), &data, &count, &offset)) != ARCHIVE_EOF;) {
            end = offset + static_cast<int64_t>(count);
            CheckBounds(end);
            CheckRatio(end);
            Write(file.Get(), static_cast<const char*>(data), count, offset, place);
        }
        Check(ftruncate(file.Get(), size) == 0, place);  // it may end with a hole
        unpacked += static_cast<uint64_t>(size > end ? size : end);
        const timespec times[] = {{0, UTIME_OMIT},
                                  {archive_entry_mtime(&entry), archive_entry_mtime_nsec(&entry)}};
        Check(futimens(file.Get(), times) == 0, place);
    }

    void CheckBounds(int64_t size) const {
        if (size < 0 || static_cast<uint64_t>(size) > bounds.bytes - unpacked) {
            throw CaptureError(name + " would take more than " + std::to_string(bounds.bytes) +
                               " bytes, far more than a node's files.");
        }
    }

    void CheckRatio(int64_t size) const {
        const uint64_t all = unpacked + static_cast<uint64_t>(size);
        const auto packed = static_cast<uint64_t>(archive_filter_bytes(reader.get(), -1));
        if (all > SMALL_ENOUGH && all / bounds.ratio > packed) {
            throw CaptureError(name + " unpacks to more than " + std::to_string(bounds.ratio) +
                               " times its size: it is made to fill a disk.");
        }
    }

    void Write(int file, const char* data, size_t count, int64_t offset, const fs::path& place) const {
        while (count > 0) {
            const ssize_t written = pwrite(file, data, count, offset);
            Check(written > 0 || (written < 0 && errno == EINTR), place);
            const size_t done = written > 0 ? static_cast<size_t>(written) : 0;
            data += done;
            count -= done;
            offset += static_cast<int64_t>(done);
        }
    }

    // Of a step of writing `place`; errno tells what went wrong.
    void Check(bool isDone, const fs::path& place) const {
        if (!isDone) {
            const bool isFull = errno == ENOSPC || errno == EDQUOT || errno == EFBIG;
            throw CaptureError(name + " cannot be unpacked to " + place.string() + ": " +
                               std::strerror(errno) + "." +
                               (isFull ? " Make room, or name another place with TMPDIR." : ""));
        }
    }

    const std::string name;
    const std::string directory;
    const ArchiveBounds bounds;
    const std::unique_ptr<archive, ReaderDeleter> reader;
    uint64_t entries = 0;
    uint64_t unpacked = 0;  // bytes of the files that are complete
};
}  // namespace

void Unpack(const std::string& archive, const std::string& directory, const ArchiveBounds& bounds) {
    Unpacking(archive, directory, bounds).Run();
}
}  // namespace zorv
