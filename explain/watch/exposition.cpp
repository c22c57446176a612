#include "explain/watch/exposition.h"

#include <algorithm>

#include "explain/wording.h"
#include "explain/wording_errors.h"
#include "text/utf8.h"

namespace explain {
namespace {

// A label's value, as the format quotes it.
std::string Label(const std::string& name, const std::string& value) {
    std::string quoted;
    for (const char letter : ValidUtf8(value)) {
        quoted += letter == '\n'                    ? "\\n"
                  : letter == '"' || letter == '\\' ? std::string("\\") + letter
                                                    : std::string(1, letter);
    }
    return "{" + name + "=\"" + quoted + "\"}";
}

// A gauge: its head, and a line for each value.
class Gauge {
public:
    Gauge(const char* gauge, const char* help) : name(gauge) {
        text = "# HELP " + name + " " + help + "\n# TYPE " + name + " gauge\n";
    }

    void Add(const std::string& labels, double value, int decimals = 0) {
        text += name + labels + " " + Fixed(value, decimals) + "\n";
    }

    const std::string& Text() const { return text; }

private:
    const std::string name;
    std::string text;
};

std::string One(const char* name, const char* help, double value) {
    Gauge gauge(name, help);
    gauge.Add("", value);
    return gauge.Text();
}

std::string PointsText(const Report& report, const Changes& changes) {
    Gauge ratio("zorv_point_delay_ratio", "Delay of the newest row, in multiples of the usual one.");
    Gauge slow("zorv_point_slow", "1 while the point is slow, else 0.");
    for (const Look& look : report.looks) {
        const std::string label = Label("point", look.point);
        const double usual = changes.UsualOf(look);
        if (!look.rows.empty() && !look.finding.deviations.empty() && usual > 0.0) {
            ratio.Add(label, look.rows.back().delay / usual, 3);
        }
        slow.Add(label, changes.IsSlow(look.point) ? 1 : 0);
    }
    return ratio.Text() + slow.Text();
}

std::string ErrorsText(const Report& report) {
    Gauge errors("zorv_errors", "Errors of the last hour by type, all points together.");
    const bool areKnown = report.areErrorsLookedAt && !report.errorsReason;
    for (size_t column = 0; areKnown && column < ERROR_COLUMNS; ++column) {
        const ErrorType type = TypeOf(column);
        const auto look = std::find_if(report.errorLooks.begin(), report.errorLooks.end(),
                                       [&](const ErrorLook& one) { return one.type.index == type.index; });
        errors.Add(Label("type", WordOf(type)),
                   look != report.errorLooks.end() ? static_cast<double>(look->count) : 0.0);
    }
    return errors.Text();
}

}  // namespace

std::string ExpositionOf(const Report& report, const Changes& changes, int64_t now) {
    std::string text = PointsText(report, changes) + ErrorsText(report);
    if (changes.Newest()) {
        text += One("zorv_newest_row_age_seconds", "How old the newest row is.",
                    static_cast<double>(now - *changes.Newest()));
    }
    return text +
           One("zorv_database_readable", "1 while the statistics database can be read, else 0.",
               changes.IsUnreadable() ? 0 : 1) +
           One("zorv_look_time_seconds", "When that was looked at, in seconds since 1970.",
               static_cast<double>(now));
}

}  // namespace explain
