#include "platform/linux/loop/TerminationSignal.hpp"

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

}  // namespace quorvane
