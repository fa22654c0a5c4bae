#include "platform/linux/loop/SignalDescriptor.hpp"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>

namespace quorvane {
namespace {

// Global, because a signal handler receives only the signal's number.
std::atomic<int> descriptors[NSIG];
static_assert(std::atomic<int>::is_always_lock_free);

// The descriptor holds a count; a stop adds more than all signals of a lifetime could.
constexpr std::uint64_t kOne = 1;
constexpr std::uint64_t kStop = std::uint64_t{1} << 40;

void wakeSigHandler(int signal) {
    const int saved = errno;
    [[maybe_unused]] const auto written = ::write(descriptors[signal], &kOne, sizeof kOne);
    errno = saved;
}

void ignoreSigHandler(int) {}

void install(int signal, void (*handler)(int), struct sigaction* before) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, before);
}

}  // namespace

SignalDescriptor::SignalDescriptor(int signal)
    : signal_(signal), descriptor_(eventfd(0, EFD_CLOEXEC)) {
    descriptors[signal] = descriptor_.get();
    install(signal, wakeSigHandler, &before_);
}

SignalDescriptor::~SignalDescriptor() {
    sigaction(signal_, &before_, nullptr);
    descriptors[signal_] = -1;  // a handler that still runs must not write into a reused number
}

bool SignalDescriptor::wait() const {
    // The thread sanitizer runs no handlers inside eventfd_read, but does inside poll.
    pollfd entry{descriptor_.get(), POLLIN, 0};
    while (poll(&entry, 1, -1) < 0)
        if (errno != EINTR) return false;
    eventfd_t count = 0;
    return eventfd_read(descriptor_.get(), &count) == 0 && count % kStop != 0;
}

void SignalDescriptor::stopWaiting() const { eventfd_write(descriptor_.get(), kStop); }

void surviveBrokenPipes() { install(SIGPIPE, ignoreSigHandler, nullptr); }

}  // namespace quorvane
