#include "platform/linux/processes/RunningApplicationsLinux.hpp"

#include <signal.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include "platform/linux/files/BundleLayout.hpp"
#include "platform/linux/files/FileDescriptor.hpp"
#include "platform/linux/files/FileManagerLinux.hpp"
#include "platform/linux/processes/ProcessTable.hpp"

namespace quorvane {
namespace {

constexpr std::string_view kPlaceInBundle = ".app/Contents/Linux/";

WallTime timeOf(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return WallTime{std::chrono::seconds{time.tv_sec} + std::chrono::nanoseconds{time.tv_nsec}};
}

// Read once, because the user may set the clock between comparisons of copies.
WallTime startOfSystem() {
    static const WallTime start =
        timeOf(CLOCK_REALTIME) - timeOf(CLOCK_BOOTTIME).time_since_epoch();
    return start;
}

RunningCopy runningCopyOf(const ProcessRecord& process) {
    static const auto ticksPerSecond = static_cast<std::uint64_t>(sysconf(_SC_CLK_TCK));
    if (!process.threadTicks)
        return {process.pid, startOfSystem() + timeOf(CLOCK_BOOTTIME).time_since_epoch()};
    const std::uint64_t ticks = *process.threadTicks;
    return {process.pid,
            startOfSystem() + std::chrono::seconds{ticks / ticksPerSecond} +
                std::chrono::nanoseconds{ticks % ticksPerSecond * 1'000'000'000 / ticksPerSecond}};
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
        // Examine only the few processes in a bundle more closely.
        const auto isInBundle = [](std::string_view executable) {
            return executable.find(kPlaceInBundle) != executable.npos;
        };
        for (const pid_t pid : processesWhere(isInBundle)) {
            const auto process = processRecord(pid);
            if (process && hasIdentifier(*process, identifier) && isSameLogin(*process, self))
                copies.push_back(runningCopyOf(*process));
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
        .current = [] { return runningCopyOf(ownProcessRecord()); },
        .terminate = terminate};
}

}  // namespace quorvane
