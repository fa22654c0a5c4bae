// The system's lock-state sources: the names of its notices, and tables for the others. Main thread
// only.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "platform/Handle.hpp"
#include "platform/PropertyValue.hpp"

namespace quorvane {

struct LiveServices;

// The distributed notices of a lock, the same on every system.
inline constexpr char kScreenIsLocked[] = "com.apple.screenIsLocked";
inline constexpr char kScreenIsUnlocked[] = "com.apple.screenIsUnlocked";
inline constexpr char kScreenLockUIIsShown[] = "com.apple.screenLockUIIsShown";
inline constexpr char kScreenLockUIIsHidden[] = "com.apple.screenLockUIIsHidden";

struct LockSources {
    // The current session's dictionary; nullopt outside a graphical session. The root may be of any
    // type.
    std::function<std::optional<PropertyValue>()> sessionDictionary;
    // Calls the handler on the main thread each time the machine wakes.
    std::function<Handle(std::function<void()> handler)> observeWake;
    // The system's shared notify states: register to check one, read it, cancel the registration.
    // The statuses are the system's; 0 is success.
    std::function<std::uint32_t(const char* name, int& token)> notifyRegisterCheck;
    std::function<std::uint32_t(int token, std::uint64_t& state)> notifyGetState;
    std::function<void(int token)> notifyCancel;
};

// Read again on every call. A state that cannot be read counts as unlocked.
inline bool isScreenLocked(const LockSources& sources) {
    const auto session = sources.sessionDictionary();
    const auto* const dictionary = session ? session->as<PropertyDictionary>() : nullptr;
    const bool* const isLocked =
        dictionary ? find<bool>(*dictionary, "CGSSessionScreenIsLocked") : nullptr;
    return isLocked && *isLocked;
}

// Sources that need no display: locks that the desktop or the login manager announces. The table
// owns its observers. `services` must outlive it.
LockSources makeLiveLockSources(const LiveServices& services);

}  // namespace quorvane
