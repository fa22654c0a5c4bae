// The insides of collections, for fakes and tests.
#pragma once

#include "tests/macos_runtime/fakes/Fakes.hpp"

namespace macrt {

const std::vector<id>& itemsOf(NSArray* array);
const std::vector<id>& keysOf(NSDictionary* dictionary);

}  // namespace macrt
