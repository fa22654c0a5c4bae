#include "platform/macos/services/SignalSource.hpp"

#include <signal.h>
#include <unistd.h>

#include "platform/macos/foundation/ReferenceCounting.hpp"

namespace quorvane {

dispatch_source_t makeSignalSource(int signal, dispatch_queue_t queue, dispatch_block_t handler) {
    // The source receives the signal even though it is ignored.
    ::signal(signal, SIG_IGN);
    dispatch_source_t source = dispatch_source_create(DISPATCH_SOURCE_TYPE_SIGNAL,
                                                      static_cast<uintptr_t>(signal), 0, queue);
    dispatch_source_set_event_handler(source, handler);
    return source;
}

void handleTerminationSignalMacOS(std::function<void()> action) {
    static dispatch_source_t source;
    source = makeSignalSource(SIGTERM, dispatch_get_global_queue(QOS_CLASS_USER_INITIATED, 0), ^{
      dispatch_source_cancel(source);
      action();
      signal(SIGTERM, SIG_DFL);
      kill(getpid(), SIGTERM);
    });
    // Only now, because the handler may run at once, on another thread, and cancels the source.
    dispatch_activate(source);
}

}  // namespace quorvane
