// What the system tells about the lock besides its notices. Main thread only.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "platform/Handle.hpp"
#include "platform/PropertyValue.hpp"

namespace quorvane {

struct LockSources {
    // The current session's dictionary, or nothing outside a graphical session. The root may be of
    // any type.
    std::function<std::optional<PropertyValue>()> sessionDictionary;
    // Calls the handler on the main thread each time the machine has woken.
    std::function<Handle(std::function<void()> handler)> observeWake;
    // The shared notify states: a registration to check, its state, its end. Statuses are the
    // system's, 0 is success.
    std::function<std::uint32_t(const char* name, int& token)> notifyRegisterCheck;
    std::function<std::uint32_t(int token, std::uint64_t& state)> notifyGetState;
    std::function<void(int token)> notifyCancel;
};

}  // namespace quorvane
