// The unified log on this system: the journal, standard error without a journal, or a file.
#pragma once

#include <filesystem>
#include <string>

#include "platform/Clock.hpp"
#include "platform/Log.hpp"

namespace quorvane {

struct LogOptions {
    std::string identifier;        // SYSLOG_IDENTIFIER, the program's name
    bool toStandardError = false;  // even if there is a journal
    bool showsPrivate = false;
    // Lines are appended to this file instead, in the format of standard error. They go to standard
    // error when it cannot be opened. Detached programs have no standard error.
    std::filesystem::path file{};

    // Set by QUORVANE_LOG=stderr or QUORVANE_LOG=<absolute path>, and by QUORVANE_LOG_PRIVATE=1.
    static LogOptions fromEnvironment(std::string identifier);
};

// Any thread. Checks once, here, whether there is a journal.
LogSink makeLogSink(LogOptions options);

// "2026-01-31T12:34:56.789Z category level: text\n", always one line. Control characters in the
// text become "?", so that no value can imitate a line or control the terminal.
std::string standardErrorLine(const LogLine& line, WallTime time, bool showsPrivate);

}  // namespace quorvane
