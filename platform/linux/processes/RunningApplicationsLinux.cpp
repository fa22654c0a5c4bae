#include "platform/linux/processes/RunningApplicationsLinux.hpp"

#include <dirent.h>
#include <limits.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <array>
#include <charconv>
#include <memory>

#include "platform/RegularFiles.hpp"
#include "platform/linux/files/BundleLayout.hpp"
#include "platform/linux/files/Environment.hpp"
#include "platform/linux/files/FileDescriptor.hpp"
#include "platform/linux/files/FileManagerLinux.hpp"

namespace quorvane {
namespace {

constexpr std::string_view kPlaceInBundle = ".app/Contents/Linux/";
constexpr std::string_view kDeletedMark = " (deleted)";
constexpr std::uint64_t kLargestFile = 8 << 20;

struct ProcessExecutable {
    std::filesystem::path path;
    bool isDeleted = false;  // while the process runs
};

struct ProcessRecord {
    ProcessExecutable executable;
    std::string display;        // DISPLAY, without its screen
    std::string runtimeFolder;  // XDG_RUNTIME_DIR
};

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

// Start time of its first thread other than the main one, in ticks since boot; nullopt while it has
// none.
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

// Returns nullopt when the process has exited, belongs to another user or cannot be examined.
std::optional<ProcessRecord> processRecord(pid_t pid) {
    const auto folder = folderOf(pid);
    auto executable = executableOf(pid);
    if (!executable) return std::nullopt;
    const std::string environment = contentsOf(folder / "environ");
    return ProcessRecord{.executable = *std::move(executable),
                         .display = withoutScreen(variableIn(environment, "DISPLAY")),
                         .runtimeFolder = variableIn(environment, "XDG_RUNTIME_DIR")};
}

// Uses the current environment variables, which may differ from those at the start.
ProcessRecord ownProcessRecord() {
    return {.executable = executableOf(getpid()).value_or(ProcessExecutable{}),
            .display = withoutScreen(std::string{environmentVariable("DISPLAY")}),
            .runtimeFolder = std::string{environmentVariable("XDG_RUNTIME_DIR")}};
}

// The processes whose executable lies in a bundle, of all users, in no particular order. Uses one
// system call per process, because there are hundreds and few are applications.
std::vector<pid_t> processesInBundles() {
    std::vector<pid_t> pids;
    forEachNumber("/proc", [&](int folder, pid_t pid) {
        std::array<char, PATH_MAX> path;
        const ssize_t length =
            readlinkat(folder, (std::to_string(pid) + "/exe").c_str(), path.data(), path.size());
        if (length > 0 && std::string_view{path.data(), static_cast<std::size_t>(length)}.contains(
                              kPlaceInBundle))
            pids.push_back(pid);
    });
    return pids;
}

// The launch date counts from the system's start, because the user may set the clock between
// comparisons of copies.
RunningCopy runningCopyOf(pid_t pid) {
    static const Duration tick{1'000'000'000 / sysconf(_SC_CLK_TCK)};
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    Duration launch = std::chrono::seconds{now.tv_sec} + std::chrono::nanoseconds{now.tv_nsec};
    if (const auto ticks = threadTicksOf(pid)) launch = tick * *ticks;
    return {pid, WallTime{launch}};
}

bool isSameLogin(const ProcessRecord& one, const ProcessRecord& other) {
    if (!one.display.empty() && !other.display.empty()) return one.display == other.display;
    return one.runtimeFolder == other.runtimeFolder;
}

// "X.app/Contents/Linux/name" of an executable in a bundle.
std::filesystem::path placeInBundle(const ProcessRecord& process) {
    const auto bundle = bundleOfExecutable(process.executable.path);
    return bundle.empty() ? bundle
                          : process.executable.path.lexically_relative(bundle.parent_path());
}

struct Applications {
    ProcessRecord self = ownProcessRecord();
    FileManagerClient files = makeFileManager();

    bool hasIdentifier(const ProcessRecord& process, const std::string& identifier) const {
        const auto bundle = bundleOfExecutable(process.executable.path);
        if (bundle.empty()) return false;
        if (const auto own = files.identity(bundle)) return *own == identifier;
        // Its bundle was deleted while it runs, so compare its name instead.
        return process.executable.isDeleted && placeInBundle(process) == placeInBundle(self) &&
               files.identity(bundleOfExecutable(self.executable.path)) == identifier;
    }

    std::vector<RunningCopy> running(const std::string& identifier) const {
        std::vector<RunningCopy> copies;
        for (const pid_t pid : processesInBundles()) {
            const auto process = processRecord(pid);
            if (process && hasIdentifier(*process, identifier) && isSameLogin(*process, self))
                copies.push_back(runningCopyOf(pid));
        }
        return copies;
    }
};

void terminate(std::int32_t pid) {
    // The pid may be reused before the signal is sent; a pidfd always refers to the same process.
    const FileDescriptor process{static_cast<int>(syscall(SYS_pidfd_open, pid, 0))};
    if (!process) return;
    const auto record = processRecord(pid);
    if (!record || bundleOfExecutable(record->executable.path).empty()) return;
    syscall(SYS_pidfd_send_signal, process.get(), SIGINT, nullptr, 0);
}

}  // namespace

RunningApplications makeRunningApplications() {
    const Applications applications;
    return {
        .running = [applications](
                       const std::string& identifier) { return applications.running(identifier); },
        .current = [] { return runningCopyOf(getpid()); },
        .terminate = terminate};
}

}  // namespace quorvane
