// What tells whether two files are the same.
#pragma once

#include <string>

// SHA-256 of the file's bytes in hexadecimal digits; empty when `path` is no ordinary file or cannot be read.
// It opens and closes the file, which drops the locks that SQLite has on it for this process. Any thread;
// blocks on file I/O.
std::string HashOfFile(const std::string& path);
