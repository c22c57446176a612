// What the overview of a report shows, in whatever form.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "explain/wording.h"
#include "text/sparkline.h"

namespace explain {

// How much something calls for attention.
enum class Mood {
    CALM,
    OVER,  // it was unusual in the range
    NOW    // it still is
};

struct PictureLine {
    std::string text;
    Mood mood = Mood::CALM;
};

// What happened, and why.
struct Headline {
    PictureLine what;
    std::string cause;  // empty when it is not known
};

// One point, or one type of errors, over the range.
struct PictureRow {
    std::string name;
    std::vector<TimedValue> values;
    double top = 0.0;    // of a sparkline, which begins with 0
    std::string amount;  // "2.4 times"; empty when nothing is known
    PictureLine state;   // "now", "until 13:02", "usual"
};

struct PictureEvent {
    int64_t start = 0;
    PictureLine when;
    std::string subject;
    std::string cause;                 // empty when it was not looked for
    std::vector<std::string> command;  // that explains it in full: words as a shell takes them
    std::string anchor;                // on the page, of the analysis that explains it; empty without one
};

struct Picture {
    std::vector<Headline> headlines;  // what is going on, since when, and why; first, that no point was slow
    std::vector<PictureRow> points;
    std::vector<PictureRow> errors;
    std::vector<PictureEvent> events;  // what still goes on, then the latest first
};

Picture PictureOf(const Report& report, const Figures& figures);

}  // namespace explain
