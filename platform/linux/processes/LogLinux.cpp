#include "platform/linux/processes/LogLinux.hpp"

// Otherwise every line would carry a position in this file.
#define SD_JOURNAL_SUPPRESS_LOCATION
#include <fcntl.h>
#include <sys/uio.h>
#include <systemd/sd-journal.h>
#include <time.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <memory>
#include <utility>

#include "platform/Character.hpp"
#include "platform/LogRendering.hpp"
#include "platform/linux/files/Environment.hpp"
#include "platform/linux/files/FileDescriptor.hpp"

namespace quorvane {
namespace {

constexpr char kJournalSocket[] = "/run/systemd/journal/socket";

struct LevelRow {
    const char* name;
    const char* priority;  // syslog's
};

LevelRow rowOf(LogLevel level) {
    switch (level) {
        case LogLevel::debug: return {"debug", "7"};
        case LogLevel::info: return {"info", "6"};
        case LogLevel::standard: return {"default", "5"};
        case LogLevel::error: return {"error", "3"};
        case LogLevel::fault: return {"fault", "2"};
    }
    std::unreachable();
}

// Writes a line in one piece, so that lines of several threads and processes do not mix.
void writeTo(int descriptor, const std::string& line) {
    std::string_view rest = line;
    while (!rest.empty()) {
        const ssize_t written = write(descriptor, rest.data(), rest.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return;  // no place to report it
        rest.remove_prefix(static_cast<std::size_t>(written));
    }
}

FileDescriptor openedLog(const std::filesystem::path& file) {
    if (file.empty()) return {};
    return FileDescriptor{open(
        file.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, 0600)};
}

bool writeToJournal(const LogLine& line, const LogOptions& options) {
    std::array fields{"MESSAGE=" + logLineText(line, options.showsPrivate),
                      std::string{"PRIORITY="} + rowOf(line.level).priority,
                      "SUBSYSTEM=" + std::string{line.subsystem},
                      "CATEGORY=" + std::string{line.category},
                      "SYSLOG_IDENTIFIER=" + options.identifier};
    std::array<iovec, fields.size()> pieces{};
    for (std::size_t index = 0; index < fields.size(); ++index)
        pieces[index] = {fields[index].data(), fields[index].size()};
    return sd_journal_sendv(pieces.data(), static_cast<int>(pieces.size())) >= 0;
}

}  // namespace

LogOptions LogOptions::fromEnvironment(std::string identifier) {
    const std::string_view target = environmentVariable("QUORVANE_LOG");
    return {.identifier = std::move(identifier),
            .toStandardError = target == "stderr",
            .showsPrivate = environmentVariable("QUORVANE_LOG_PRIVATE") == "1",
            .file = target.starts_with('/') ? target : ""};
}

LogSink makeLogSink(LogOptions options) {
    // The journal's own function reports success even when there is no journal.
    if (!options.file.empty() || access(kJournalSocket, F_OK) != 0) options.toStandardError = true;
    const auto file = std::make_shared<FileDescriptor>(openedLog(options.file));
    return [options = std::move(options), file](const LogLine& line) {
        if (!options.toStandardError && writeToJournal(line, options)) return;
        const WallTime now = std::chrono::system_clock::now();
        writeTo(*file ? file->get() : STDERR_FILENO,
                standardErrorLine(line, now, options.showsPrivate));
    };
}

std::string standardErrorLine(const LogLine& line, WallTime time, bool showsPrivate) {
    const auto milliseconds = std::chrono::floor<std::chrono::milliseconds>(time);
    const auto seconds = std::chrono::floor<std::chrono::seconds>(milliseconds);
    const std::time_t number = seconds.time_since_epoch().count();
    tm parts{};
    gmtime_r(&number, &parts);
    char text[64];
    const std::size_t length = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &parts);
    std::snprintf(text + length, sizeof text - length, ".%03dZ ",
                  static_cast<int>((milliseconds - seconds).count()));
    std::string result{text};
    result.append(line.category).append(" ").append(rowOf(line.level).name).append(": ");
    return result.append(printable(logLineText(line, showsPrivate))).append("\n");
}

}  // namespace quorvane
