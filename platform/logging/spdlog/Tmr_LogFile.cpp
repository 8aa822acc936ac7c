// The log on spdlog, which does the locking and writes the time. The rest of a line is composed and escaped here, so
// that no message can break a line or forge one.
#include "platform/logging/Tmr_LogFile.h"

#include "platform/KeptUntilUnload.h"
#include "platform/logging/spdlog/LineSink.h"

#include <fmt/format.h>
#include <spdlog/logger.h>
#include <spdlog/pattern_formatter.h>

#include <unistd.h>

#include <array>
#include <charconv>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>

constinit Tmr_LogFile TmrGLog;

static_assert(std::is_trivially_destructible_v<Tmr_LogFile>, "threads may log while exit() runs");

namespace secm::platform {
namespace {

constexpr int defaultLevel = 3;

struct Announced {
    const char* sourceFile;
    const char* functionName;
    int line;
    int level;
};
thread_local Announced announced{"", "", 0, 0};

int LevelFromEnvironment()
{
    const char* text = std::getenv("TMR_LOG_LEVEL");
    if (text == nullptr || *text == '\0') {
        return defaultLevel;
    }
    int level = 0;
    const char* end = text + std::strlen(text);
    if (auto [stop, error] = std::from_chars(text, end, level); error != std::errc() || stop != end) {
        std::fprintf(stderr, "TMR_LOG_LEVEL: '%s' is not a whole number; logging at level %d\n", text, defaultLevel);
        return defaultLevel;
    }
    return level;
}

std::string PathFromEnvironment()
{
    const char* path = std::getenv("TMR_LOG_FILE");
    return path != nullptr ? path : "";
}

std::string Formatted(const char* format, std::va_list arguments)
{
    std::va_list again;
    va_copy(again, arguments);
    std::array<char, 512> shortText{};
    const int length = std::vsnprintf(shortText.data(), shortText.size(), format, arguments);
    std::string text;
    if (length < 0) {
        text = std::string("(cannot be formatted) ") + format;
    } else if (static_cast<std::size_t>(length) < shortText.size()) {
        text.assign(shortText.data(), static_cast<std::size_t>(length));
    } else {
        text.resize(static_cast<std::size_t>(length));
        std::vsnprintf(text.data(), text.size() + 1, format, again);
    }
    va_end(again);
    return text;
}

// Escapes the backslash too, so that the exact bytes can be recovered from the line.
void AppendEscaped(std::string& line, std::string_view text)
{
    constexpr std::string_view digits = "0123456789abcdef";
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < 0x20 || byte == 0x7f) {
            line += "\\x";
            line += digits[byte >> 4U];
            line += digits[byte & 0xfU];
        } else if (character == '\\') {
            line += "\\\\";
        } else {
            line += character;
        }
    }
}

} // namespace
} // namespace secm::platform

struct Tmr_LogFile::Settings {
    std::optional<int> level;
    std::optional<std::string> path;
};

struct Tmr_LogFile::Writer {
    explicit Writer(const std::string& path) : sink(std::make_shared<secm::platform::LineSink>(path))
    {
        logger.set_formatter(
            std::make_unique<spdlog::pattern_formatter>("%Y-%m-%dT%H:%M:%S.%eZ %v", spdlog::pattern_time_type::utc));
        logger.set_error_handler([](const std::string& reason) {
            std::fprintf(stderr, "TMR_LOG_FILE: a message of the log is lost: %s\n", reason.c_str());
        });
    }

    const std::shared_ptr<secm::platform::LineSink> sink;
    spdlog::logger logger{"TmrGLog", sink};
};

// Does not use std::call_once: an exception that leaves it makes the C library load another library, and ends the
// process when there is no memory for that.
void Tmr_LogFile::Open()
{
    const std::lock_guard<std::mutex> lock(opening);
    if (writer.load(std::memory_order_relaxed) == nullptr) {
        const Settings chosen = settings != nullptr ? *settings : Settings{};
        Writer& opened =
            secm::platform::KeptUntilUnload<Writer>(chosen.path ? *chosen.path : secm::platform::PathFromEnvironment());
        threshold.store(chosen.level ? *chosen.level : secm::platform::LevelFromEnvironment(),
                        std::memory_order_relaxed);
        writer.store(&opened, std::memory_order_release);
    }
}

void Tmr_LogFile::Configure(std::optional<int> level, const std::optional<std::string>& path)
{
    const std::lock_guard<std::mutex> lock(opening);
    if (writer.load(std::memory_order_relaxed) != nullptr) {
        throw std::logic_error("the log is in use already; set its level and file before the first message");
    }
    Settings chosen{level, path};
    if (settings == nullptr) {
        settings = &secm::platform::KeptUntilUnload<Settings>();
    }
    *settings = std::move(chosen);
}

bool Tmr_LogFile::Reopen()
{
    Writer* const inUse = writer;
    return inUse == nullptr || inUse->sink->Reopen();
}

int Tmr_LogFile::StoreParams(const char* sourceFile, const char* functionName, int line, int level, int /*module*/,
                             int /*number*/)
{
    if (level > threshold.load(std::memory_order_relaxed)) {
        return 0;
    }
    if (writer.load(std::memory_order_acquire) == nullptr) {
        Open();
    }
    if (level > threshold.load(std::memory_order_relaxed)) {
        return 0;
    }
    secm::platform::announced = {sourceFile, functionName, line, level};
    return 1;
}

void Tmr_LogFile::Log(const char* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    const std::string text = secm::platform::Formatted(format, arguments);
    va_end(arguments);

    std::string_view message = text;
    if (message.ends_with('\n')) {
        message.remove_suffix(1);
    }
    const auto& announced = secm::platform::announced;
    std::string line = fmt::format("[{}] [{}] ", announced.level, gettid());
    secm::platform::AppendEscaped(line, announced.functionName);
    line += " (";
    secm::platform::AppendEscaped(line, announced.sourceFile);
    fmt::format_to(std::back_inserter(line), ":{}) ", announced.line);
    secm::platform::AppendEscaped(line, message);
    writer.load(std::memory_order_relaxed)->logger.log(spdlog::level::info, spdlog::string_view_t(line));
}
