// What the producer and the test tell each other, in memory that both map.
#pragma once

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <new>
#include <string>

// Every row of a database has the number of the state in which it was written; numbers only rise.
struct PublishedStates {
    std::atomic<int64_t>
        oldest;  // the answer to a question asked from now on is of this state or a later one
    std::atomic<int64_t> newest;   // no answer until now is of a later one
    std::atomic<int64_t> answers;  // the test counts them
};

struct Published {
    PublishedStates statistics, heal;
    std::atomic<int64_t> cycles;  // re-creations; the test lets them begin by setting 0

    static Published& Map(const std::string& file) {
        const int descriptor = open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        void* const mapped =
            ftruncate(descriptor, sizeof(Published)) != 0
                ? MAP_FAILED
                : mmap(nullptr, sizeof(Published), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
        close(descriptor);
        return mapped != MAP_FAILED ? *static_cast<Published*>(mapped) : throw std::bad_alloc();
    }
};
