// Signals as events of a queue. For Objective-C++ only.
#pragma once

#import <dispatch/dispatch.h>

#include <functional>

namespace quorvane {

// Calls the handler on the queue for each such signal, which from now on does nothing else. Ends
// with its last reference.
dispatch_source_t startSignalSource(int signal, dispatch_queue_t queue, dispatch_block_t handler);

// As Application::handleTerminationSignal promises.
void handleTerminationSignalMacOS(std::function<void()> action);

}  // namespace quorvane
