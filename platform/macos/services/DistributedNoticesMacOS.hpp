// Distributed notices over the session's distributed notification centre.
#pragma once

#include "platform/DistributedNotices.hpp"

namespace quorvane {

// Both ends request immediate delivery, because the centre holds notices back from a program that
// is never active.
DistributedNotices makeDistributedNoticesMacOS();

}  // namespace quorvane
