// The shared container, whole files and random bytes.
#pragma once

#include <string>

#include "platform/FileStore.hpp"

namespace quorvane {

FileStore makeFileStoreMacOS();
FillRandom makeFillRandomMacOS();
std::string makeUUIDMacOS();

}  // namespace quorvane
