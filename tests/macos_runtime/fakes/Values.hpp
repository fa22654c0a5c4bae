// Values that only the system makes, for tests.
#pragma once

#include <map>

#include "tests/macos_runtime/fakes/Fakes.hpp"

namespace macrt {

// By path: what reading finds and writing leaves.
std::map<std::string, std::string>& files();

NSError* makeError(NSString* domain, NSInteger code, NSString* description);

}  // namespace macrt
