// The surface process during a lock, with the outputs that it reports.
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <vector>

#include "platform/Clock.hpp"
#include "platform/Listeners.hpp"
#include "platform/Log.hpp"
#include "platform/linux/loop/EventLoop.hpp"
#include "platform/linux/wayland/SurfaceProcess.hpp"
#include "platform/linux/wayland/WaylandSession.hpp"

namespace quorvane {

// Main thread only. While the screen is unlocked there is no connection to the compositor and there
// are no screens.
class WaylandSessionLinux : public WaylandSession {
public:
    WaylandSessionLinux(EventLoop& loop, std::filesystem::path program, Logger log);

    // The lock has begun or ended. The end takes every surface away at once.
    void setLocked(bool isLocked);
    // The result refers to the session.
    Screens screens();

    std::uint32_t open(const Screen& screen, ToSurface request, int memory,
                       SurfaceEvents events) override;
    void send(const ToSurface& message) override;
    void close(std::uint32_t surface) override;

private:
    struct Output {
        std::uint32_t name;
        Rect place;
        double scale;
    };

    void start();
    void handle(const FromSurface& message);
    void outputChanged(const FromSurface& message);
    void ready(bool hasKdeOverlay);
    void ended();
    void forgetSurfaces();
    void beat();
    std::vector<Screen> list() const;

    EventLoop& loop_;
    Clock clock_;
    std::filesystem::path program_;
    Logger log_;
    std::unique_ptr<SurfaceProcess> process_;
    std::vector<Output> outputs_;  // in the order of their appearance
    bool isReady_ = false;
    std::map<std::uint32_t, SurfaceEvents> surfaces_;
    std::uint32_t surfacesMade_ = 0;
    int restartsLeft_ = 0;
    Timer restart_;
    Timer nextBeat_;
    Listeners<> changes_;
};

}  // namespace quorvane
