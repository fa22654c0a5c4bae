// Limits that a local port sets for its clients.
#pragma once

#include <cstddef>

#include "platform/Clock.hpp"

namespace quorvane {

struct PortLimits {
    Duration requestTime = std::chrono::seconds{5};  // from a request's first byte to its last
    Duration replyTime = std::chrono::seconds{10};   // until a reply is fully sent
    std::size_t connections = 128;
    std::size_t bodyBytes = 128 * 1024 * 1024;  // of all long requests, and of all waiting replies
};

}  // namespace quorvane
