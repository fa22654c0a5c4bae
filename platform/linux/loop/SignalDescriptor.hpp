// A signal of the system as a descriptor that becomes readable.
#pragma once

#include <signal.h>

#include <cstdint>

#include "platform/linux/files/FileDescriptor.hpp"

namespace quorvane {

// One a signal at a time. A handler and not a blocked signal: programs that this one starts inherit
// what is blocked or ignored, but no handlers. The earlier disposition comes back in the end.
class SignalDescriptor {
public:
    explicit SignalDescriptor(int signal);
    ~SignalDescriptor();
    SignalDescriptor(const SignalDescriptor&) = delete;
    SignalDescriptor& operator=(const SignalDescriptor&) = delete;

    int descriptor() const { return descriptor_.get(); }
    // Waits for the signal, also for one that came before. False after `stopWaiting`, unless the
    // signal has come too.
    bool wait() const;
    void stopWaiting() const;

private:
    const int signal_;
    const FileDescriptor descriptor_;
    struct sigaction before_ {};
};

// Makes writing to a socket or pipe that nobody reads an error instead of the end of the process.
void surviveBrokenPipes();

}  // namespace quorvane
