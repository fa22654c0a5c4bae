// The distributed notification centre of the login session.
#pragma once

#include "platform/DistributedNotices.hpp"

namespace quorvane {

// The centre of a program that is never active holds notices back unless they are asked for at
// once: they are here, on both ends.
DistributedNotices makeDistributedNoticesMacOS();

}  // namespace quorvane
