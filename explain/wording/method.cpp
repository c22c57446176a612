#include <array>
#include <cmath>

#include "explain/report.h"
#include "explain/wording.h"

namespace explain {
namespace {

struct Term {
    const char* word;
    const char* meaning;
};

// Each in a line of a terminal.
constexpr std::array<Term, 17> TERMS = {{
    {"event", "samples in a row that are high: more than 5 scales above the usual"},
    {"usual", "the median of the samples in no event"},
    {"scale", "1.4826 median absolute deviations, 2 % of the median at least"},
    {"baseline", "the samples that tell what is usual: those before the event"},
    {"extra delay", "what the event's delay lies above the usual, times the requests"},
    {"share", "the part of it that stays with a point, without those below it"},
    {"z", "how far the event's mean lies from the usual, in scales"},
    {"r", "correlation with the point above, -1 to 1, over the whole range"},
    {"*", "the point takes part: its z is above 5, and there is extra delay"},
    {"nature", "what the extra delay goes with; usual: there is none"},
    {"device", "slower than before at the same load: something is wrong there"},
    {"load", "as slow as ever with so many requests: nothing is broken"},
    {"since", "when the first high sample of the point in the event is"},
    {"sure", "the share is 70 % or more, and the second far behind; likely: 50 %"},
    {"unsure", "less, a second close behind, one sample, or rows missing below it"},
    {"agreement", "how many parts of the baseline lead to the same point"},
    {"own walk", "the cause that the plug-in's delayanal names, by correlation"},
}};

constexpr double FAR = 3.0;  // deviations of a count by chance

}  // namespace

std::string GlossaryOf() {
    std::string text = "What the words of an answer mean:\n";
    for (const Term& term : TERMS) {
        std::string word = term.word;
        word.resize(12, ' ');
        text += "  " + word + term.meaning + "\n";
    }
    return text + "The whole method: docs/explain.md.";
}

std::string ChanceOf(const Report& report) {
    const ChanceFlags& flags = report.flags;
    if (flags.samples == 0) {
        return {};
    }
    const bool isMore = static_cast<double>(flags.flagged) > flags.expected + FAR * std::sqrt(flags.expected);
    return std::to_string(flags.flagged) + " of " + Counted(flags.samples, "sample") +
           " lie beyond three deviations, the detector's bound; of as many without any fault " +
           Fixed(flags.expected, 1) + " would by chance. " +
           (isMore ? "That is more than chance explains."
                   : "So a single sample beyond them, without an event, need not mean anything.");
}

}  // namespace explain
