#include "host/collecting/archive_writer.h"

#include <archive.h>
#include <archive_entry.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <utility>
#include <vector>

#include "host/capture/captured_database.h"
#include "host/process/files.h"
#include "host/process/interrupt.h"

namespace zorv {
namespace {
namespace fs = std::filesystem;

constexpr size_t BLOCK = 1 << 20;
constexpr mode_t FOR_THE_OWNER = 0600;

struct Free {
    void operator()(archive* writer) const { archive_write_free(writer); }
    void operator()(archive_entry* entry) const { archive_entry_free(entry); }
};

class Packing {
public:
    explicit Packing(std::string to)
        : name(std::move(to)),
          file(open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, FOR_THE_OWNER)),
          writer(archive_write_new()) {
        if (!file) {
            throw CaptureError(name + " cannot be made: " + std::strerror(errno) + ".");
        }
        Check(archive_write_add_filter_zstd(writer.get()));
        Check(archive_write_set_format_pax_restricted(writer.get()));
        Check(archive_write_open_fd(writer.get(), file.Get()));
    }

    void Add(const fs::path& path, const std::string& as, const std::function<void(size_t)>& count) {
        const std::unique_ptr<archive_entry, Free> entry(archive_entry_new());
        struct stat status {};
        std::ifstream stream(path, std::ios::binary);
        if (!stream || stat(path.c_str(), &status) != 0) {
            throw CaptureError(path.string() + " cannot be read: " + std::strerror(errno) + ".");
        }
        archive_entry_set_pathname(entry.get(), as.c_str());
        archive_entry_set_filetype(entry.get(), AE_IFREG);
        archive_entry_set_perm(entry.get(), FOR_THE_OWNER);
        archive_entry_set_size(entry.get(), status.st_size);
        archive_entry_set_mtime(entry.get(), status.st_mtim.tv_sec, status.st_mtim.tv_nsec);
        Check(archive_write_header(writer.get(), entry.get()));
        std::vector<char> block(BLOCK);
        while (stream.read(block.data(), BLOCK) || stream.gcount() > 0) {
            const auto got = static_cast<size_t>(stream.gcount());
            Check(archive_write_data(writer.get(), block.data(), got) == static_cast<la_ssize_t>(got)
                      ? ARCHIVE_OK
                      : ARCHIVE_FATAL);
            count(got);
        }
    }

    void Close() {
        Check(archive_write_close(writer.get()));
        if (fsync(file.Get()) != 0) {
            throw CaptureError(name + " cannot be written: " + std::strerror(errno) + ".");
        }
    }

private:
    void Check(int status) const {
        if (Interrupted()) {
            throw CaptureError(name + " is not written: interrupted.");
        }
        if (status < ARCHIVE_WARN) {
            const char* const reason = archive_error_string(writer.get());
            throw CaptureError(name + " cannot be written: " +
                               (reason == nullptr ? "no reason is known" : reason) + ". Is there space?");
        }
    }

    const std::string name;
    const OwnedFd file;
    const std::unique_ptr<archive, Free> writer;
};

std::vector<fs::path> FilesOf(const std::string& folder) {
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file()) {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}
}  // namespace

void Pack(const std::string& folder, const std::string& name, const std::string& archive,
          const std::function<void(double)>& show) {
    const std::vector<fs::path> files = FilesOf(folder);
    uintmax_t all = 1;
    for (const fs::path& file : files) {
        all += fs::file_size(file);
    }
    uintmax_t done = 0;
    Packing packing(archive);
    for (const fs::path& file : files) {
        packing.Add(file, name / file.lexically_relative(folder), [&](size_t count) {
            done += count;
            show(static_cast<double>(done) / static_cast<double>(all));
        });
    }
    packing.Close();
}
}  // namespace zorv
