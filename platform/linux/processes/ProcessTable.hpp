// What the system tells of this user's processes.
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
    bool isDeleted = false;  // under the process
};

struct ProcessRecord {
    pid_t pid = 0;
    ProcessExecutable executable;
    // When its first thread besides the main one began, since the system's start, in
    // sysconf(_SC_CLK_TCK) a second; nothing before it has one.
    std::optional<std::uint64_t> threadTicks;
    std::string display;        // DISPLAY, without its screen
    std::string runtimeFolder;  // XDG_RUNTIME_DIR
};

// Nothing when it has ended, when it is another user's or when it may not be looked at.
std::optional<ProcessRecord> processRecord(pid_t pid);
// With the variables as they are now, which need not be those it was started with.
ProcessRecord ownProcessRecord();
// Those whose executable's path, which ends in a mark where it was deleted, is wanted; of any user,
// in no order that matters. There are hundreds of processes and few are wanted: one system call
// each.
std::vector<pid_t> processesWhere(const std::function<bool(std::string_view executable)>& isWanted);

}  // namespace quorvane
