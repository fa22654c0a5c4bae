// A real program that a test starts, ended with the test at the latest.
#pragma once

#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quorvane {

// Move-only; the destructor kills what still runs and reaps it.
class ChildProcess {
public:
    ChildProcess() = default;
    // `environment` holds "NAME=value" entries that are set over the test's own environment.
    // `descriptor` is inherited under the same number.
    explicit ChildProcess(std::vector<std::string> arguments,
                          const std::vector<std::string>& environment = {}, int descriptor = -1) {
        std::vector<char*> argv;
        for (std::string& argument : arguments) argv.push_back(argument.data());
        argv.push_back(nullptr);
        pid_ = fork();
        if (pid_ != 0) return;
        // A test that crashes must not leave servers behind.
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        for (const std::string& entry : environment) putenv(const_cast<char*>(entry.c_str()));
        if (descriptor >= 0) fcntlKeepOpen(descriptor);
        execvp(argv[0], argv.data());
        _exit(127);
    }
    ChildProcess(ChildProcess&& other) noexcept : pid_(std::exchange(other.pid_, -1)) {}
    ChildProcess& operator=(ChildProcess&& other) noexcept {
        std::swap(pid_, other.pid_);
        return *this;
    }
    ~ChildProcess() { end(SIGKILL); }

    pid_t pid() const { return pid_; }
    void signal(int number) const {
        if (pid_ > 0) ::kill(pid_, number);
    }
    // Sends the signal and waits for the end.
    void end(int number) {
        signal(number);
        wait(std::chrono::seconds{20});
    }
    // The wait status, or nothing when it still runs at the deadline.
    std::optional<int> wait(std::chrono::milliseconds deadline) {
        if (pid_ <= 0) return std::nullopt;
        const int descriptor = static_cast<int>(syscall(SYS_pidfd_open, pid_, 0));
        pollfd entry{descriptor, POLLIN, 0};
        const int ready = poll(&entry, 1, static_cast<int>(deadline.count()));
        close(descriptor);
        int status = 0;
        if (ready <= 0 || waitpid(pid_, &status, 0) != pid_) return std::nullopt;
        pid_ = -1;
        return status;
    }
    // The exit status; nothing when it still runs, or was ended by a signal.
    std::optional<int> exitStatus(std::chrono::milliseconds deadline) {
        const auto status = wait(deadline);
        if (!status || !WIFEXITED(*status)) return std::nullopt;
        return WEXITSTATUS(*status);
    }

private:
    static void fcntlKeepOpen(int descriptor) {
        // Descriptors are made close-on-exec; a copy is not.
        const int copy = dup(descriptor);
        dup2(copy, descriptor);
        close(copy);
    }

    pid_t pid_ = -1;
};

// Waits for other processes: whether the condition holds within 20 s.
inline bool eventually(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds{20};
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        poll(nullptr, 0, 10);
    }
    return true;
}

// The next line from another process, without its end; "" when that has closed, or after half a
// minute, as only in a failing test.
inline std::string readLine(int descriptor) {
    std::string line;
    char character = 0;
    pollfd entry{descriptor, POLLIN, 0};
    while (poll(&entry, 1, 30'000) > 0 && read(descriptor, &character, 1) == 1) {
        if (character == '\n') return line;
        line.push_back(character);
    }
    return line;
}

}  // namespace quorvane
