#include "platform/linux/processes/DetachedProcess.hpp"

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/linux/files/BundleLayout.hpp"
#include "platform/linux/files/FileDescriptor.hpp"
#include "platform/linux/files/PosixError.hpp"

namespace quorvane {
namespace {

void useDefaultSignals() {
    // A background job of a script inherits an ignored SIGINT, which is the request to quit.
    for (int number = 1; number < NSIG; ++number) signal(number, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

// Replaces the standard streams with /dev/null and closes all other descriptors except `kept`,
// which closes on exec.
bool dropInheritedState(int kept) {
    const int null = open("/dev/null", O_RDWR);
    if (null < 0) return false;
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (dup2(null, standard) < 0) return false;
    close_range(3, static_cast<unsigned>(kept) - 1, 0);
    close_range(static_cast<unsigned>(kept) + 1, ~0U, 0);
    return chdir("/") == 0;
}

// Runs in the grandchild. Reports the errno of a failure through the descriptor.
[[noreturn]] void begin(const std::filesystem::path& executable, char** arguments, int report) {
    useDefaultSignals();
    if (dropInheritedState(report)) execv(executable.c_str(), arguments);
    const int failure = errno;
    _exit(write(report, &failure, sizeof failure) == sizeof failure ? 126 : 127);
}

[[noreturn]] void forkAgain(const std::filesystem::path& executable, char** arguments, int report) {
    setsid();
    const pid_t pid = fork();
    if (pid == 0) begin(executable, arguments, report);
    const int failure = errno;
    if (pid < 0 && write(report, &failure, sizeof failure) < 0) _exit(127);
    _exit(0);
}

Result<void> startDetached(const std::filesystem::path& executable,
                           std::vector<std::string> arguments) {
    std::string own = executable.string();
    std::vector<char*> words{own.data()};
    for (std::string& argument : arguments) words.push_back(argument.data());
    words.push_back(nullptr);
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC) != 0) return posixError("pipe");
    const FileDescriptor reading{ends[0]};
    // Above the standard descriptors even when some are closed, because the child replaces those.
    FileDescriptor writing{fcntl(ends[1], F_DUPFD_CLOEXEC, 4)};
    close(ends[1]);
    const pid_t pid = fork();
    if (pid < 0) return posixError("fork");
    if (pid == 0) forkAgain(executable, words.data(), writing.get());
    writing.reset();
    int failure = 0;
    const ssize_t length = read(reading.get(), &failure, sizeof failure);
    waitpid(pid, nullptr, 0);
    if (length == sizeof failure) return posixError(executable, failure);
    return {};
}

}  // namespace

Result<OpenCommandEnd> openApplication(const std::filesystem::path& bundle,
                                       const std::vector<std::string>& arguments) {
    std::error_code error;
    // Resolve links, because the application derives its bundle from its own resolved path.
    const auto resolved = std::filesystem::canonical(bundle, error);
    if (error) return posixError(bundle, error.value());
    const auto executable = executableOfBundle(resolved, propertiesOfBundle(resolved));
    if (!executable) {
        return std::unexpected{PlatformError{.description = bundle.string() +
                                                            ": not an application: it has no "
                                                            "Contents/Info.plist that names an "
                                                            "executable"}};
    }
    if (auto started = startDetached(*executable, arguments); !started)
        return std::unexpected{std::move(started).error()};
    return OpenCommandEnd{};
}

}  // namespace quorvane
