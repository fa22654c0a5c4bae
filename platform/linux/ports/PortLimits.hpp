// How far a local port lets its clients go.
#pragma once

#include <cstddef>

#include "platform/Clock.hpp"

namespace quorvane {

struct PortLimits {
    Duration requestTime = std::chrono::seconds{5};  // from a request's first byte to its last
    Duration replyTime = std::chrono::seconds{10};   // until a reply has been taken
    std::size_t connections = 128;
    std::size_t bodyBytes = 128 * 1024 * 1024;  // of all long requests, and of all waiting replies
};

}  // namespace quorvane
