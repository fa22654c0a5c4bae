// The window server's private interface, loaded at run time: creates one space above the lock
// screen and moves card windows into it.
#pragma once

#include <cstdint>

#include "drawing/CardWindows.hpp"
#include "platform/DynamicLoader.hpp"
#include "platform/Log.hpp"

namespace quorvane {

// Main thread only. Created once; the space lives as long as the process. Failures are only logged:
// a window that cannot be moved stays where the system put it.
class SkyLight {
public:
    SkyLight(DynamicLoader loader, const LogSink& log);

    // Loads once; a failed load is not retried. Returns whether all symbols are there.
    bool load();
    // Creates the space if needed. Returns whether it exists.
    bool ensureSpace();
    void put(const CardSystemWindow& window);

private:
    using MainConnectionID = std::int32_t (*)();
    using SpaceCreate = std::uint64_t (*)(std::int32_t connection, std::int32_t type,
                                          const void* options);
    using SetLevel = std::int32_t (*)(std::int32_t connection, std::uint64_t space,
                                      std::int32_t level);
    using ShowSpaces = std::int32_t (*)(std::int32_t connection, const void* spaces);
    using AddWindows = std::int32_t (*)(std::int32_t connection, std::uint64_t space,
                                        const void* windows, std::int32_t options);

    template <typename Function>
    void look(void* library, const char* name, Function& entry);

    DynamicLoader loader_;
    Logger log_;
    MainConnectionID mainConnectionID_ = nullptr;
    SpaceCreate spaceCreate_ = nullptr;
    SetLevel setLevel_ = nullptr;
    ShowSpaces showSpaces_ = nullptr;
    AddWindows addWindows_ = nullptr;
    std::int32_t connection_ = 0;
    std::uint64_t space_ = 0;
    bool loadAttempted_ = false;
    bool loaded_ = false;
};

}  // namespace quorvane
