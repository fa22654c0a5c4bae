// The unified log: loggers that carry the origin of a line, and the sink that the platform
// provides.
#pragma once

#include <array>
#include <functional>
#include <span>
#include <string_view>
#include <type_traits>

#include "platform/LogFormat.hpp"

namespace quorvane {

enum class LogLevel {
    debug,
    info,
    standard,
    error,
    fault
};  // standard is the system's "default" level

struct LogLine {
    std::string_view subsystem;
    std::string_view category;
    LogLevel level;
    std::string_view format;  // a literal, followed by a NUL
    std::span<const LogArgument> arguments;
};

// Any thread. The line is valid only during the call.
using LogSink = std::function<void(const LogLine&)>;

// Cheap to copy. Subsystem and category are literals or outlive the logger. A logger with an empty
// sink drops every line.
class Logger {
public:
    Logger() = default;
    Logger(LogSink sink, std::string_view subsystem, std::string_view category)
        : sink_(std::move(sink)), subsystem_(subsystem), category_(category) {}

    template <typename... Arguments>
    void debug(LogFormat<std::type_identity_t<Arguments>...> format,
               const Arguments&... arguments) const {
        write(LogLevel::debug, format.text(), arguments...);
    }
    template <typename... Arguments>
    void info(LogFormat<std::type_identity_t<Arguments>...> format,
              const Arguments&... arguments) const {
        write(LogLevel::info, format.text(), arguments...);
    }
    template <typename... Arguments>
    void standard(LogFormat<std::type_identity_t<Arguments>...> format,
                  const Arguments&... arguments) const {
        write(LogLevel::standard, format.text(), arguments...);
    }
    template <typename... Arguments>
    void error(LogFormat<std::type_identity_t<Arguments>...> format,
               const Arguments&... arguments) const {
        write(LogLevel::error, format.text(), arguments...);
    }
    template <typename... Arguments>
    void fault(LogFormat<std::type_identity_t<Arguments>...> format,
               const Arguments&... arguments) const {
        write(LogLevel::fault, format.text(), arguments...);
    }

private:
    template <typename T>
    static LogArgument argument(const T& value) {
        if constexpr (std::convertible_to<T, std::string_view>)
            return std::string_view{value};
        else if constexpr (std::floating_point<T>)
            return static_cast<double>(value);
        else if constexpr (std::unsigned_integral<T> && !std::same_as<T, bool>)
            return static_cast<std::uint64_t>(value);
        else
            return static_cast<std::int64_t>(value);
    }

    template <typename... Arguments>
    void write(LogLevel level, std::string_view format, const Arguments&... arguments) const {
        if (!sink_) return;
        const std::array<LogArgument, sizeof...(Arguments)> values{argument(arguments)...};
        sink_(LogLine{subsystem_, category_, level, format, values});
    }

    LogSink sink_;
    std::string_view subsystem_;
    std::string_view category_;
};

}  // namespace quorvane
