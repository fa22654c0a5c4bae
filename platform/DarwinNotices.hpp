// Darwin notices: only a name, meaning "something changed, come and ask".
#pragma once

#include <functional>
#include <string>

#include "platform/Handle.hpp"

namespace quorvane {

// Main thread only. Posting reaches every observer of the name in any process of this login, the
// poster's too; several posts in quick succession may arrive as one. Handlers run on the main
// thread, never inside `post`.
struct DarwinNotices {
    std::function<void(const std::string& name)> post;
    std::function<Handle(const std::string& name, std::function<void()> handler)> observe;
};

}  // namespace quorvane
