#include "host/basis/answer_basis.h"

#include <charconv>
#include <utility>

#include "host/basis/route_file.h"
#include "host/basis/statistics_file.h"
#include "host/services/told_failures.h"
#include "text/nearest_name.h"

namespace zorv {
namespace {
// How the plug-in's statements look.
constexpr std::string_view ROWS = "select curtime";
constexpr std::string_view ALL_COLUMNS = "select curtime, acceptnum";
constexpr std::string_view BEGIN = "curtime >= ";
constexpr std::string_view END = "curtime <= ";
constexpr std::string_view HEAL_TABLE = " from fault_heal_event ";

// And its answers: an error line that does not refuse what was typed, and one that needs no graph.
constexpr std::string_view INNER_ERROR = "inner err";
constexpr std::string_view NOTHING_FLAGGED = "There's no detect result";

constexpr const char* NO_STATISTICS = "the statistics have none";
constexpr int64_t AROUND = 3600;                // a single row's neighbours tell the step
constexpr int64_t FARTHEST = int64_t{1} << 40;  // a time that can be reckoned with

bool BeginsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

// The number behind the last `word`: names stand before it.
std::optional<int64_t> NumberBehind(std::string_view sql, std::string_view word) {
    const size_t found = sql.rfind(word);
    int64_t number = 0;
    if (found == std::string_view::npos) {
        return std::nullopt;
    }
    const char* const start = sql.data() + found + word.size();
    const auto result = std::from_chars(start, sql.data() + sql.size(), number);
    const bool isTime = result.ec == std::errc() && number > -FARTHEST && number < FARTHEST;
    return isTime ? std::optional<int64_t>(number) : std::nullopt;
}

// The name between the quotes of "= 'NAME')"; one that is not found is empty.
std::string_view PointOf(std::string_view sql) {
    constexpr std::string_view NAME = "= '", NAME_END = "')";
    const size_t start = sql.find(NAME);
    const size_t end = sql.find(NAME_END);
    return start < end && end != sql.npos ? sql.substr(start + NAME.size(), end - start - NAME.size()) : "";
}

void Append(std::string& all, const std::string& one) {
    all += (all.empty() || one.empty() ? "" : "; ") + one;
}

std::string AboutStatistics() {
    try {
        const std::optional<TimeRange> rows = StatisticsFile().Rows();
        return rows ? "the statistics have " + TextOf(*rows) : NO_STATISTICS;
    } catch (const DatabaseError& error) {
        return std::string("the statistics cannot be read: ") + error.what();
    }
}

// The usual step of the rows in and around a range; 0: not known.
int64_t StepAround(const TimeRange& range) {
    try {
        return StatisticsFile().CoverageOf({range.start - AROUND, range.end + AROUND}).step;
    } catch (const DatabaseError&) {
        return 0;
    }
}

std::string WithoutConfiguration() {
    const std::string problem = ConfigurationProblem();
    return problem.empty() ? "" : "on no configuration: " + problem;
}

std::string FailedStatementsProblem() {
    const FailedQueries failed = TakeFailedQueries();
    if (failed.count == 0) {
        return {};
    }
    return "on failed statements: " + std::to_string(failed.count) + " given up" +
           (failed.reason.empty() ? "" : ", " + failed.reason);
}
}  // namespace

AnswerBasis::AnswerBasis(std::string ofPoint, bool restsOnGraphs)
    : point(std::move(ofPoint)), usesGraphs(restsOnGraphs) {
    TakeFailedQueries();
    ListenToStatements(this);
}

AnswerBasis::~AnswerBasis() {
    ListenToStatements(nullptr);
}

void AnswerBasis::OnStatement(std::string_view sql) {
    ++statements;
    kind = Kind::OTHER;
    if (BeginsWith(sql, ROWS)) {
        AskForRows(sql);
    } else if (sql.find(HEAL_TABLE) != std::string_view::npos) {
        kind = Kind::HEAL_EVENTS;
    }
}

void AnswerBasis::AskForRows(std::string_view sql) {
    hasAsked = true;
    askedForGraph |= BeginsWith(sql, ALL_COLUMNS);
    const std::string asked(PointOf(sql));
    points.insert(asked);
    if (!point.empty() && asked != point) {
        return;
    }
    const std::optional<int64_t> start = NumberBehind(sql, BEGIN);
    const std::optional<int64_t> end = NumberBehind(sql, END);
    if (!range && start && end && *start <= *end) {
        range = {*start, *end};
        count.emplace(*range);
    }
    if (count) {
        count->EndSeries();
        kind = Kind::ROWS;
    }
}

void AnswerBasis::OnRow(int64_t first) {
    if (kind == Kind::ROWS) {
        count->Add(first);
    } else if (kind == Kind::HEAL_EVENTS) {
        wasHealed |= first != 0;  // while SQLite reads a schema for itself, it brings rows as well
    }
}

std::string AnswerBasis::Problem(const Printed& printed) {
    ListenToStatements(nullptr);
    if (count) {
        count->EndSeries();
    }
    std::string problems = FailedStatementsProblem();
    const bool isRefused = printed.hasErrorLine && printed.last.find(INNER_ERROR) == std::string::npos;
    if (!isRefused && !wasHealed) {
        const std::string configuration = MayLackGraphs(printed.last) ? WithoutConfiguration() : "";
        Append(problems, configuration);
        // A command that failed may have read less than there is.
        const bool isKnown =
            !printed.hasErrorLine || (configuration.empty() && AboutStatistics() == NO_STATISTICS);
        Append(problems, isKnown ? RowsProblem() : "");
    }
    return problems.empty() ? "" : "the answer rests " + problems;
}

// As far as is seen without reading the file, which takes longer than most commands.
bool AnswerBasis::MayLackGraphs(const std::string& printed) const {
    return usesGraphs &&
           (IsConfigurationRefused() || (!askedForGraph && !BeginsWith(printed, NOTHING_FLAGGED)));
}

std::string AnswerBasis::RowsProblem() const {
    if (!HasRows()) {
        return "on no rows" + (point.empty() ? "" : " of " + point) + ": " + WhyNoRows();
    }
    Coverage coverage = count->Get();
    if (coverage.step == 0) {
        coverage = count->Get(StepAround(*range));
    }
    return coverage.isPart ? "on a part of the range: " + TextOf(*coverage.rows) + ", " + coverage.Intervals()
                           : "";
}

std::string AnswerBasis::WhyNoRows() const {
    if (statements == 0) {
        return "no database is open; 'status' tells of both";
    }
    const bool isNeverAsked = !point.empty() && hasAsked && !range;
    return isNeverAsked ? "this command never asks for them" + DidYouMean(point, Points())
                        : AboutStatistics();
}

bool AnswerBasis::HasRows() const {
    return count && count->Get().rows.has_value();
}
}  // namespace zorv
