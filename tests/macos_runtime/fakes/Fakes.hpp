// What fakes share, and what tests may do to them beyond the system's own interface. For
// Objective-C++ only.
//
// A fake records what it is told and delivers what a test hands to it. It decides nothing: what the
// system would answer is set by the test. Only values, collections and notification centres really
// work.
#pragma once

#import <Foundation/Foundation.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/macos_runtime/runtime/TestRuntime.hpp"

// A class that conforms to it has every message to its own methods recorded, but for the getters of
// its properties.
@protocol Recorded
@end

namespace macrt {

NSString* makeString(std::string_view text);
// Of a string; "" for nil.
std::string textOf(NSString* string);
// "@\"text\"", "5", "<NSPanel#1>".
std::string describe(id object);

// What an array holds.
const std::vector<id>& itemsOf(NSArray* array);

// Lets go of every object that a fake shares between tests.
void resetFakes();
// Adds to what resetFakes does; for fakes, made before main.
struct AtReset {
    explicit AtReset(std::function<void()> action);
};

}  // namespace macrt
