// Restriction of the process that fetches a picture.
#pragma once

#include "platform/PlatformError.hpp"

namespace quorvane {

// Permanently restricts a process of one thread to its memory, its open descriptors and connections
// over the Internet: no files, no other process, no local socket. Fails where the kernel has no
// system-call filters.
Result<void> confineToInternet();

}  // namespace quorvane
