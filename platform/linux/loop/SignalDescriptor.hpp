// System signal as a descriptor that becomes readable.
#pragma once

#include <signal.h>

#include <cstdint>

#include "platform/linux/files/FileDescriptor.hpp"

namespace quorvane {

// At most one per signal at a time. Uses a handler instead of a blocked signal, because child
// programs inherit blocked and ignored signals, but no handlers. The destructor restores the
// earlier disposition.
class SignalDescriptor {
public:
    explicit SignalDescriptor(int signal);
    ~SignalDescriptor();
    SignalDescriptor(const SignalDescriptor&) = delete;
    SignalDescriptor& operator=(const SignalDescriptor&) = delete;

    int descriptor() const { return descriptor_.get(); }
    // Waits for the signal; a signal that came earlier counts. Returns false after `stopWaiting`,
    // unless the signal has come too.
    bool wait() const;
    void stopWaiting() const;

private:
    const int signal_;
    const FileDescriptor descriptor_;
    struct sigaction before_ {};
};

// Makes a write to a socket or pipe without a reader fail instead of ending the process.
void surviveBrokenPipes();

}  // namespace quorvane
