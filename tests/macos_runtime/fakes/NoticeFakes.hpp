// What tests may do to notification centres. What is posted by the code under test is only noted;
// notices come in when a test delivers them.
#pragma once

#import <AppKit/AppKit.h>

#include "tests/macos_runtime/fakes/Fakes.hpp"

namespace macrt {

void deliver(NSNotificationCenter* center, NSString* name, NSDictionary* userInfo = nil);
void deliverDistributed(NSString* name, NSDictionary* userInfo = nil);
void deliverDarwin(std::string_view name);

}  // namespace macrt
