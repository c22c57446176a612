#include "host/services/log.h"

#include <spdlog/logger.h>
#include <spdlog/sinks/base_sink.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <unistd.h>

#include <cstdarg>
#include <deque>
#include <memory>
#include <mutex>

#include "host/process/colour.h"
#include "host/process/error_lines.h"
#include "host/process/immortal.h"
#include "host/process/interrupt.h"
#include "host/services/alarm_counts.h"
#include "host/services/told_failures.h"
#include "text/printable.h"

namespace zorv {
namespace {
using LoggerPointer = std::shared_ptr<spdlog::logger>;

constexpr size_t MOST_HELD = 1000;

// Lines on stderr, in one piece each; the level's word in a colour where that is wanted.
class ErrorLinesSink : public spdlog::sinks::base_sink<std::mutex> {
public:
    void Hold() {
        const std::lock_guard<std::mutex> lock(mutex_);
        holds = true;
    }

    void Show() {
        const std::lock_guard<std::mutex> lock(mutex_);
        holds = false;
        for (const std::string& line : held) {
            PrintErrorLines(line);
        }
        held.clear();
    }

private:
    void sink_it_(const spdlog::details::log_msg& message) override {
        spdlog::memory_buf_t buffer;
        formatter_->format(message, buffer);
        std::string line(buffer.data(), buffer.size());
        const char* const colour = ColourOf(message.level);
        if (hasColour && colour != nullptr) {
            line.insert(message.color_range_end, COLOUR_END);
            line.insert(message.color_range_start, colour);
        }
        if (!holds) {
            PrintErrorLines(line);
            return;
        }
        held.push_back(std::move(line));
        if (held.size() > MOST_HELD) {
            held.pop_front();
        }
    }

    void flush_() override {}

    static const char* ColourOf(spdlog::level::level_enum level) {
        const char* const warning = level == spdlog::level::warn ? COLOUR_YELLOW : nullptr;
        return level == spdlog::level::err ? COLOUR_RED : warning;
    }

    const bool hasColour = WantsColour(STDERR_FILENO);
    bool holds = false;
    std::deque<std::string> held;
};

spdlog::level::level_enum SpdlogLevel(uint32_t level) {
    if (level <= VPLOG_LEVEL_ERROR) {
        return spdlog::level::err;
    }
    if (level == VPLOG_LEVEL_WARNING) {
        return spdlog::level::warn;
    }
    return level < VPLOG_LEVEL_DEBUG ? spdlog::level::info : spdlog::level::debug;
}

LoggerPointer MakeLogger(spdlog::sink_ptr sink, uint32_t level) {
    auto logger = std::make_shared<spdlog::logger>("zorv", std::move(sink));
    logger->set_level(SpdlogLevel(level));
    logger->flush_on(spdlog::level::trace);
    logger->set_pattern("%Y-%m-%d %H:%M:%S.%e [%^%l%$] %v");
    return logger;
}

LoggerPointer& Logger() {
    static LoggerPointer& logger =
        MakeImmortal<LoggerPointer>(MakeLogger(std::make_shared<ErrorLinesSink>(), VPLOG_LEVEL_WARNING));
    return logger;
}

// The sink on stderr; null where the log goes to a file.
std::shared_ptr<ErrorLinesSink> TheErrorLines() {
    return std::dynamic_pointer_cast<ErrorLinesSink>(Logger()->sinks().front());
}
}  // namespace

void ConfigureLog(const std::string& file, uint32_t level) {
    spdlog::sink_ptr sink;
    if (file.empty()) {
        sink = std::make_shared<ErrorLinesSink>();
    } else {
        sink = std::make_shared<spdlog::sinks::basic_file_sink_mt>(file);
    }
    Logger() = MakeLogger(std::move(sink), level);
}

void HoldLog() {
    if (const auto lines = TheErrorLines()) {
        lines->Hold();
    }
}

void ShowHeldLog() {
    if (const auto lines = TheErrorLines()) {
        lines->Show();
    }
}
}  // namespace zorv

void vplog(uint32_t module, uint32_t stated, const char* file, uint32_t line, const char* function,
           uint32_t /*reserved*/, const char* format, ...) {
    zorv::CountSuppressedAlarm(format);
    zorv::NoteFailure(format);
    // What fails in a command that was stopped fails for that reason, many times.
    const uint32_t level = zorv::Interrupted() ? uint32_t{VPLOG_LEVEL_DEBUG} : stated;
    va_list args;
    va_start(args, format);
    try {
        spdlog::logger& logger = *zorv::Logger();
        if (logger.should_log(zorv::SpdlogLevel(level))) {
            logger.log(zorv::SpdlogLevel(level), "[{}] {}:{} {}: {}", module, file, line, function,
                       Printable(FormatText(format, args)));
        }
    } catch (...) {
        // There is no place left to complain to; the line is lost, the caller lives on.
    }
    va_end(args);
}
