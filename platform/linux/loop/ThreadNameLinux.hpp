// Names of threads, as debuggers and the process list show them.
#pragma once

#include <string>

namespace quorvane {

// The kernel keeps 15 letters; the end of a long name says more than its beginning.
void nameCurrentThread(const std::string& name);

}  // namespace quorvane
