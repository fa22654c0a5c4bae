// Signal sources on a dispatch queue. For Objective-C++ only.
#pragma once

#import <dispatch/dispatch.h>

#include <functional>

namespace quorvane {

// Disables the signal's default action. Once activated, the source calls the handler on the queue
// for each such signal. It ends with its last reference.
dispatch_source_t makeSignalSource(int signal, dispatch_queue_t queue, dispatch_block_t handler);

// Implements Application::handleTerminationSignal.
void handleTerminationSignalMacOS(std::function<void()> action);

}  // namespace quorvane
