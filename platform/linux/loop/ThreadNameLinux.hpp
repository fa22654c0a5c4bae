// Thread names for debuggers and the process list.
#pragma once

#include <string>

namespace quorvane {

// The kernel keeps 15 characters, so a long name keeps its end, which is more specific.
void nameCurrentThread(const std::string& name);

}  // namespace quorvane
