#include "platform/linux/processes/ProcessTable.hpp"

#include <dirent.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <charconv>
#include <memory>

#include "platform/RegularFiles.hpp"
#include "platform/linux/files/Environment.hpp"

namespace quorvane {
namespace {

constexpr std::string_view kDeletedMark = " (deleted)";
constexpr std::uint64_t kLargestFile = 8 << 20;

std::filesystem::path folderOf(pid_t pid) {
    return std::filesystem::path{"/proc"} / std::to_string(pid);
}

bool isOfThisUser(const std::filesystem::path& folder) {
    struct stat status {};
    return stat(folder.c_str(), &status) == 0 && status.st_uid == geteuid();
}

std::string contentsOf(const std::filesystem::path& file) {
    const auto read = makeLiveRegularFiles().read(file, kLargestFile);
    return read ? std::string{textOf(read->contents)} : std::string{};
}

// Calls the handler with the folder's descriptor and each entry name that is a number.
template <typename Handler>
void forEachNumber(const char* path, Handler&& handle) {
    const std::unique_ptr<DIR, int (*)(DIR*)> folder{opendir(path), closedir};
    while (const dirent* const entry = folder ? readdir(folder.get()) : nullptr) {
        const std::string_view name = entry->d_name;
        pid_t number = 0;
        const auto parsed = std::from_chars(name.data(), name.data() + name.size(), number);
        if (parsed.ec == std::errc{} && parsed.ptr == name.data() + name.size())
            handle(dirfd(folder.get()), number);
    }
}

std::optional<std::uint64_t> startTicksIn(std::string_view status) {
    // The program name is in brackets and may contain any character. After a space comes field 3;
    // the start time is field 22.
    const std::size_t bracket = status.rfind(')');
    if (bracket == status.npos) return std::nullopt;
    std::size_t field = bracket + 2;
    for (int index = 3; index < 22; ++index) {
        field = status.find(' ', field);
        if (field++ == status.npos) return std::nullopt;
    }
    std::uint64_t ticks = 0;
    const auto end = std::from_chars(status.data() + field, status.data() + status.size(), ticks);
    if (end.ec != std::errc{}) return std::nullopt;
    return ticks;
}

std::optional<std::uint64_t> threadTicksOf(pid_t pid) {
    std::optional<std::uint64_t> first;
    const std::string folder = "/proc/" + std::to_string(pid) + "/task/";
    forEachNumber(folder.c_str(), [&](int, pid_t thread) {
        if (thread == pid) return;
        const auto ticks = startTicksIn(contentsOf(folder + std::to_string(thread) + "/stat"));
        if (ticks && (!first || *ticks < *first)) first = ticks;
    });
    return first;
}

std::string variableIn(std::string_view environment, std::string_view name) {
    while (!environment.empty()) {
        const std::size_t end = std::min(environment.find('\0'), environment.size());
        const std::string_view entry = environment.substr(0, end);
        if (entry.starts_with(name) && entry.substr(name.size()).starts_with('='))
            return std::string{entry.substr(name.size() + 1)};
        environment.remove_prefix(std::min(end + 1, environment.size()));
    }
    return {};
}

// ":0.1" is screen 1 of the display ":0".
std::string withoutScreen(std::string display) {
    const std::size_t colon = display.rfind(':');
    if (colon != display.npos) display.resize(std::min(display.find('.', colon), display.size()));
    return display;
}

std::optional<ProcessExecutable> executableOf(pid_t pid) {
    const auto folder = folderOf(pid);
    std::error_code error;
    // Processes that have exited and wait for their parent have no executable.
    std::string path = std::filesystem::read_symlink(folder / "exe", error).string();
    if (error || !isOfThisUser(folder)) return std::nullopt;
    const bool isDeleted = path.ends_with(kDeletedMark);
    if (isDeleted) path.resize(path.size() - kDeletedMark.size());
    return ProcessExecutable{path, isDeleted};
}

}  // namespace

std::optional<ProcessRecord> processRecord(pid_t pid) {
    const auto folder = folderOf(pid);
    auto executable = executableOf(pid);
    if (!executable) return std::nullopt;
    const std::string environment = contentsOf(folder / "environ");
    return ProcessRecord{.pid = pid,
                         .executable = *std::move(executable),
                         .threadTicks = threadTicksOf(pid),
                         .display = withoutScreen(variableIn(environment, "DISPLAY")),
                         .runtimeFolder = variableIn(environment, "XDG_RUNTIME_DIR")};
}

ProcessRecord ownProcessRecord() {
    return {.pid = getpid(),
            .executable = executableOf(getpid()).value_or(ProcessExecutable{}),
            .threadTicks = threadTicksOf(getpid()),
            .display = withoutScreen(std::string{environmentVariable("DISPLAY")}),
            .runtimeFolder = std::string{environmentVariable("XDG_RUNTIME_DIR")}};
}

std::vector<pid_t> processesWhere(
    const std::function<bool(std::string_view executable)>& isWanted) {
    std::vector<pid_t> pids;
    forEachNumber("/proc", [&](int folder, pid_t pid) {
        std::array<char, PATH_MAX> path;
        const ssize_t length =
            readlinkat(folder, (std::to_string(pid) + "/exe").c_str(), path.data(), path.size());
        if (length > 0 && isWanted({path.data(), static_cast<std::size_t>(length)}))
            pids.push_back(pid);
    });
    return pids;
}

}  // namespace quorvane
