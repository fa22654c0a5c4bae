// The system's loader, for the private window-server interface.
#pragma once

#include "platform/DynamicLoader.hpp"

namespace quorvane {

DynamicLoader makeDynamicLoaderMacOS();

}  // namespace quorvane
