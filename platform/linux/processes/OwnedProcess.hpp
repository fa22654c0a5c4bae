// A child process that lasts as long as its owner.
#pragma once

#include <signal.h>
#include <sys/types.h>
#include <sys/wait.h>

#include <cerrno>

namespace quorvane {

// The destructor kills the process, even a stopped one, and waits for its end.
class OwnedProcess {
public:
    explicit OwnedProcess(pid_t pid) : pid_(pid) {}
    ~OwnedProcess() {
        kill(pid_, SIGKILL);
        while (waitpid(pid_, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
    OwnedProcess(const OwnedProcess&) = delete;
    OwnedProcess& operator=(const OwnedProcess&) = delete;

private:
    const pid_t pid_;
};

}  // namespace quorvane
