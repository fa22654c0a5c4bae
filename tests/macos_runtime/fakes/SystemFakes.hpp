// What the rest of the system keeps between calls, for tests.
#pragma once

#include <map>

#include "tests/macos_runtime/fakes/Answers.hpp"

namespace macrt {

// By path: what reading finds and writing leaves.
std::map<std::string, std::string>& files();
// What user defaults hold, by domain ("" for the standard one) and key.
std::map<std::string, std::map<std::string, id>>& defaults();
// What happens while the application runs.
std::function<void()>& whileRunning();

NSError* makeError(NSString* domain, NSInteger code, NSString* description);

}  // namespace macrt
