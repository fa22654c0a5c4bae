// Observation of a notification centre inside this process. For Objective-C++ only.
#pragma once

#import <Foundation/Foundation.h>

#include <functional>

#include "platform/Handle.hpp"

namespace quorvane {

// Calls the handler on the main thread for each notice of the name, until the handle is dropped.
Handle observe(NSNotificationCenter* center, NSNotificationName name,
               std::function<void()> handler);

}  // namespace quorvane
