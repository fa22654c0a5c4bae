// Distributed notices: a name with user info, delivered to every process of the session that
// observes the name.
#pragma once

#include <functional>
#include <string>

#include "platform/Handle.hpp"
#include "platform/PropertyValue.hpp"

namespace quorvane {

// Main thread only; handlers run there, one notice at a time, never inside `post`. Dropping the
// handle ends the observation.
struct DistributedNotices {
    using Handler = std::function<void(const PropertyDictionary& userInfo)>;
    std::function<void(const std::string& name, const PropertyDictionary& userInfo)> post;
    std::function<Handle(const std::string& name, Handler handler)> observe;
};

}  // namespace quorvane
