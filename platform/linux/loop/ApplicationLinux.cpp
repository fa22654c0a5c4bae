#include "platform/linux/loop/ApplicationLinux.hpp"

#include <sys/epoll.h>
#include <unistd.h>

#include <system_error>
#include <utility>

namespace quorvane {

TerminationSignal::TerminationSignal(std::function<void()> action) : action_(std::move(action)) {
    signal_.emplace(SIGTERM);
    try {
        thread_ = std::thread{[this] { watch(); }};
    } catch (const std::system_error&) {
        signal_.reset();
    }
}

TerminationSignal::~TerminationSignal() {
    if (!thread_.joinable()) return;
    signal_->stopWaiting();
    thread_.join();
}

void TerminationSignal::watch() const {
    // The parent process may have left the signal blocked, so unblock it in this thread.
    sigset_t only;
    sigemptyset(&only);
    sigaddset(&only, SIGTERM);
    pthread_sigmask(SIG_UNBLOCK, &only, nullptr);
    if (!signal_->wait()) return;
    action_();
    signal(SIGTERM, SIG_DFL);
    kill(getpid(), SIGTERM);
    while (true) pause();
}

Application ApplicationLinux::table() {
    return {.run =
                [this](const std::function<void()>& didFinishLaunching,
                       const std::function<void()>& willTerminate) {
                    return run(didFinishLaunching, willTerminate);
                },
            // The loop ends after the current handler returns, so the callers' objects outlive
            // their calls.
            .terminate = [this] { loop_.quit(EXIT_SUCCESS); },
            .handleTerminationSignal =
                [this](std::function<void()> action) { termination_.emplace(std::move(action)); }};
}

int ApplicationLinux::run(const std::function<void()>& didFinishLaunching,
                          const std::function<void()>& willTerminate) {
    const SignalDescriptor interrupt{SIGINT};
    Handle watch;
    bool hasLaunched = false;
    loop_.mainThread().post([&] {
        // Not earlier, because only a launched application can end in an orderly way.
        watch = loop_.watch(interrupt.descriptor(), EPOLLIN, [&](std::uint32_t) {
            interrupt.wait();
            loop_.quit(EXIT_SUCCESS);
        });
        hasLaunched = true;
        didFinishLaunching();
    });
    const int status = loop_.run();
    if (hasLaunched) willTerminate();
    return status;
}

}  // namespace quorvane
