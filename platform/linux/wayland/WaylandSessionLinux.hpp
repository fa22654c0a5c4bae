// The Wayland client during a lock: its connection, the outputs, and the cards' surfaces.
#pragma once

#include <filesystem>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "lockers/WaylandSessions.hpp"
#include "platform/Clock.hpp"
#include "platform/Listeners.hpp"
#include "platform/Log.hpp"
#include "platform/linux/loop/EventLoop.hpp"
#include "platform/linux/wayland/CardSurface.hpp"
#include "platform/linux/wayland/OutputInfo.hpp"
#include "platform/linux/wayland/SeatInput.hpp"
#include "platform/linux/wayland/SurfaceProcess.hpp"
#include "platform/linux/wayland/WaylandSession.hpp"

namespace quorvane {

// While a surface exists, the process's timer is renewed at least this often, mostly in wake-ups
// for another reason. Without a renewal the process ends after the limit.
inline constexpr Duration kBeat = std::chrono::milliseconds{1000};
inline constexpr Duration kBeatLimit = std::chrono::milliseconds{1800};

// The text of the user's settings in KDE Plasma; empty when it cannot be read.
std::string kdeSettings();

// Main thread only. While the screen is unlocked there is no connection to the compositor and there
// are no screens.
class WaylandSessionLinux : public WaylandSession {
public:
    WaylandSessionLinux(EventLoop& loop, std::filesystem::path program,
                        const WaylandSupport& support, Logger log);
    ~WaylandSessionLinux() override { setLocked(false); }

    // Call when the lock begins or ends. Its end removes every surface at once.
    void setLocked(bool isLocked);
    // The result refers to the session.
    Screens screens();
    std::unique_ptr<WaylandSurface> open(const Screen& screen, const SurfaceRequest& request,
                                         SurfaceEvents events) override;
    void postponeEvents() override { connection_->mayEventsWait = true; }

private:
    // Everything that ends with the process. The display is destroyed after its objects.
    struct Connection {
        std::unique_ptr<SurfaceProcess> process;
        Handle notices;
        Wayland<wl_display> display;
        Wayland<wl_registry> registry;
        Wayland<wl_callback> start;
        SurfaceGlobals globals;
        Wayland<zxdg_output_manager_v1> outputManager;
        std::list<OutputInfo> outputs;  // in the order of their appearance
        std::list<SeatInput> seats;
        bool isReady = false;  // the outputs are known
        bool mayEventsWait = false;
        Handle watch;  // not while events may wait
        Handle beforeSleep;
    };

    Screen screenOf(const OutputInfo& output) const;
    void start();
    void connected();
    void exchange();
    bool dispatch() const;
    void disconnect();
    void ended();
    void restartSoon();
    void appeared(std::uint32_t name, std::string_view interface, std::uint32_t version);
    void vanished(std::uint32_t name);
    void addSeat(std::uint32_t name);
    void addOutput(std::uint32_t name, std::uint32_t version);
    void afterAnswer(const wl_callback_listener& next);
    void globalsKnown();
    void outputsKnown();
    void outputsChanged();
    void surfaceGone(CardSurface& surface);
    void beat();

    static const wl_registry_listener kRegistryListener;

    EventLoop& loop_;
    Clock clock_;
    std::filesystem::path program_;
    WaylandSupport support_;
    Logger log_;
    std::unique_ptr<Connection> connection_;
    std::vector<CardSurface*> surfaces_;
    std::optional<double> unit_;  // of KDE Plasma's lock screen
    int restartsLeft_ = 0;
    Timer restart_;
    Instant lastBeat_{};
    Timer nextBeat_;
    Listeners<> changes_;
};

}  // namespace quorvane
