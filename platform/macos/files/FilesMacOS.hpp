// The shared container, whole files, randomness.
#pragma once

#include <string>

#include "platform/FileStore.hpp"

namespace quorvane {

FileStore makeFileStoreMacOS();
FillRandom makeFillRandomMacOS();
std::string makeUUIDMacOS();

}  // namespace quorvane
