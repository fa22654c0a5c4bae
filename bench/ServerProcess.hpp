// The serving side of a measured link: a process pinned to a processor.
#pragma once

#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>

#include <functional>

#include "bench/Measuring.hpp"

namespace quorvane {

// Killed with this object.
class ServerProcess {
public:
    // Runs `serve` in the process and returns when it has called `ready`, after which clients may
    // connect.
    using Serve = std::function<void(const std::function<void()>& ready)>;
    ServerProcess(int processor, const Serve& serve) {
        int ends[2];
        if (pipe(ends) != 0) die("pipe");
        process_ = fork();
        if (process_ == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            close(ends[0]);
            pin(processor);
            serve([end = ends[1]] {
                if (write(end, "r", 1) != 1) _exit(1);
            });
            _exit(0);
        }
        close(ends[1]);
        char signal = 0;
        if (read(ends[0], &signal, 1) != 1) die("the serving process");
        close(ends[0]);
    }
    ServerProcess(const ServerProcess&) = delete;
    ServerProcess& operator=(const ServerProcess&) = delete;
    ~ServerProcess() {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }

    pid_t pid() const { return process_; }

private:
    pid_t process_ = -1;
};

}  // namespace quorvane
