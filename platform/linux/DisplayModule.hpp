// The interface of the display modules, one library for X11 and one for Wayland. The add-on loads
// only its session's module, so that the process has no library of the other one.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

#include "drawing/Screens.hpp"
#include "lockers/LockScreenDetector.hpp"
#include "platform/Log.hpp"
#include "platform/PlatformError.hpp"
#include "platform/linux/loop/EventLoop.hpp"

namespace quorvane {

// The services of a display. The functions refer to the session.
struct Display {
    Screens screens;
    LockScreenDetector detector{};
    std::function<std::optional<std::int32_t>()> toolkitAnimates = [] { return std::nullopt; };
    std::function<void(bool isLocked)> lockChanged = [](bool) {};
    bool mayBeRemote = false;  // reached through the network
    const char* cardModule;    // the file of the module with the card's windows
    void* cardSession;         // what that module's function takes
    std::shared_ptr<void> session;
};

struct DisplayServices {
    EventLoop& loop;
    Logger log;
    std::filesystem::path folder;  // of the modules and the surface program
};

// Each module exports one such function under this name. The modules are beside the executable.
using OpenDisplay = Result<Display> (*)(const DisplayServices& services);
inline constexpr char kOpenDisplay[] = "quorvaneOpenDisplay";
inline constexpr char kX11Module[] = "quorvane-x11.so";
inline constexpr char kWaylandModule[] = "quorvane-wayland.so";
// The program whose process connects to a Wayland compositor and can end the connection.
inline constexpr char kSurfaceProgram[] = "quorvane-card-surface";

}  // namespace quorvane
