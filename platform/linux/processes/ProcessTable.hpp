// Facts about this user's processes, from the process table.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorvane {

struct ProcessExecutable {
    std::filesystem::path path;
    bool isDeleted = false;  // while the process runs
};

struct ProcessRecord {
    pid_t pid = 0;
    ProcessExecutable executable;
    // Start time of its first thread other than the main one, in ticks since boot,
    // sysconf(_SC_CLK_TCK) per second; nullopt while it has none.
    std::optional<std::uint64_t> threadTicks;
    std::string display;        // DISPLAY, without its screen
    std::string runtimeFolder;  // XDG_RUNTIME_DIR
};

// Returns nullopt when the process has exited, belongs to another user or cannot be examined.
std::optional<ProcessRecord> processRecord(pid_t pid);
// Uses the current environment variables, which may differ from those at the start.
ProcessRecord ownProcessRecord();
// The processes whose executable path is wanted; a deleted executable's path ends with a mark.
// Includes all users, in no particular order. Uses one system call per process, because there are
// hundreds and few match.
std::vector<pid_t> processesWhere(const std::function<bool(std::string_view executable)>& isWanted);

}  // namespace quorvane
