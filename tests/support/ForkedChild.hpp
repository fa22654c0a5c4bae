// A part of a test in a separate process, which sends the test lines of text.
#pragma once

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <string>

#include "tests/support/ChildProcess.hpp"

namespace quorvane {

// Fork before the test has threads. The destructor kills what still runs.
class ForkedChild {
public:
    // The body's argument sends a line to the test; its result is the exit status. Lines that the
    // child writes to standard error arrive too.
    using Say = std::function<void(const std::string& line)>;

    explicit ForkedChild(const std::function<int(const Say&)>& body) {
        int ends[2] = {-1, -1};
        if (pipe2(ends, O_CLOEXEC) != 0) return;
        pid_ = fork();
        if (pid_ == 0) runChild(ends[1], body);
        close(ends[1]);
        descriptor_ = ends[0];
    }
    ForkedChild(const ForkedChild&) = delete;
    ForkedChild& operator=(const ForkedChild&) = delete;
    ~ForkedChild() {
        if (pid_ > 0) {
            ::kill(pid_, SIGKILL);
            wait();
        }
        close(descriptor_);
    }

    std::string line() const { return readLine(descriptor_); }
    void signal(int number) const { ::kill(pid_, number); }
    // The wait status. Read the lines first: a full pipe holds the child up.
    int wait() {
        int status = 0;
        waitpid(std::exchange(pid_, -1), &status, 0);
        return status;
    }

private:
    [[noreturn]] static void runChild(int descriptor, const std::function<int(const Say&)>& body) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        dup2(descriptor, STDERR_FILENO);
        const int status = body([descriptor](const std::string& line) {
            const std::string text = line + "\n";
            if (write(descriptor, text.data(), text.size()) < 0) _exit(126);
        });
        _exit(status);
    }

    pid_t pid_ = -1;
    int descriptor_ = -1;
};

}  // namespace quorvane
