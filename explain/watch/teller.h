// Where a watch tells what it has seen.
#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "explain/options.h"
#include "explain/watch/changes.h"

namespace explain {

class Teller {
public:
    // By the options: lines or JSON; on a terminal, without JSON, a picture. A text file besides.
    explicit Teller(const Options& options);

    // Tells of a sight, and what it has changed. Returns false when nobody reads any more. Throws OutputError
    // when it cannot be printed, or the text file not be written from the start.
    bool Tell(Sight sight, const ChangeList& changed, const Changes& changes);

    // How often there is a look, where a picture does not say so itself.
    void TellInterval(std::chrono::seconds interval);

    // Paints the picture again when the terminal has got another size. Returns false when nobody reads any
    // more.
    bool Glance();

private:
    bool Print(const std::string& text) const;
    bool Paint();
    void WriteTextFile(const Changes& changes, int64_t now);

    const bool isJson;
    const bool isPainted;
    const std::optional<std::string> textFile;
    bool isFailureTold = false;  // of the text file
    bool hasWritten = false;
    std::optional<std::chrono::seconds> toldInterval;
    Report report;                   // the last one that has something
    bool isOld = false;              // the last sight had nothing
    std::string headline;            // the last change
    std::pair<size_t, size_t> size;  // of the picture, columns and rows
};

}  // namespace explain
