// The unified log on this system: the journal, or standard error where there is none, or a file.
#pragma once

#include <filesystem>
#include <string>

#include "platform/Clock.hpp"
#include "platform/Log.hpp"

namespace quorvane {

struct LogOptions {
    std::string identifier;        // SYSLOG_IDENTIFIER, the program's name
    bool toStandardError = false;  // although there is a journal
    bool showsPrivate = false;
    // Lines are added to it instead, in the form of standard error, where they go as well when it
    // cannot be opened. What is started detached has no standard error.
    std::filesystem::path file{};

    // QUORVANE_LOG=stderr, or the absolute path of a file, and QUORVANE_LOG_PRIVATE=1 set them.
    static LogOptions fromEnvironment(std::string identifier);
};

// Any thread. Whether there is a journal is looked up here, once.
LogSink makeLogSink(LogOptions options);

// "2026-01-31T12:34:56.789Z category level: text\n", one line whatever the text holds: its control
// characters are written as escapes, so that no value can pass for a line of its own or command the
// terminal.
std::string standardErrorLine(const LogLine& line, WallTime time, bool showsPrivate);

}  // namespace quorvane
