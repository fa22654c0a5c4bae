// Darwin notices: a name without data that tells observers to query the new state.
#pragma once

#include <functional>
#include <string>

#include "platform/Handle.hpp"

namespace quorvane {

// Main thread only. A post reaches every observer of the name in any process of this login,
// including the poster. Several posts in quick succession may coalesce into one. Handlers run on
// the main thread, never inside `post`.
struct DarwinNotices {
    std::function<void(const std::string& name)> post;
    std::function<Handle(const std::string& name, std::function<void()> handler)> observe;
};

}  // namespace quorvane
