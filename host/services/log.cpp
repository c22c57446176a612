#include "host/services/log.h"

#include <spdlog/logger.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>

#include <cstdarg>
#include <memory>

#include "host/services/immortal.h"
#include "host/services/text.h"

namespace {
using LoggerPointer = std::shared_ptr<spdlog::logger>;

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
    logger->set_pattern("%Y-%m-%d %H:%M:%S.%e [%l] %v");
    return logger;
}

LoggerPointer& Logger() {
    static LoggerPointer& logger = MakeImmortal<LoggerPointer>(
        MakeLogger(std::make_shared<spdlog::sinks::stderr_sink_mt>(), VPLOG_LEVEL_WARNING));
    return logger;
}
}  // namespace

void ConfigureLog(const std::string& file, uint32_t level) {
    spdlog::sink_ptr sink;
    if (file.empty()) {
        sink = std::make_shared<spdlog::sinks::stderr_sink_mt>();
    } else {
        sink = std::make_shared<spdlog::sinks::basic_file_sink_mt>(file);
    }
    Logger() = MakeLogger(std::move(sink), level);
}

void vplog(uint32_t module, uint32_t level, const char* file, uint32_t line, const char* function,
           uint32_t /*reserved*/, const char* format, ...) {
    va_list args;
    va_start(args, format);
    try {
        spdlog::logger& logger = *Logger();
        if (logger.should_log(SpdlogLevel(level))) {
            logger.log(SpdlogLevel(level), "[{}] {}:{} {}: {}", module, file, line, function,
                       Printable(FormatText(format, args)));
        }
    } catch (...) {
        // There is no place left to complain to; the line is lost, the caller lives on.
    }
    va_end(args);
}
