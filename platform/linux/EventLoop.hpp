// The main loop: one epoll loop with timers, file descriptors and actions from other threads.
#pragma once

#include <systemd/sd-event.h>

#include <cstdint>
#include <functional>
#include <memory>

#include "platform/Clock.hpp"
#include "platform/Handle.hpp"
#include "platform/MainThread.hpp"

namespace quorvane {

// Main thread only, but for what `mainThread().post` takes. Nothing wakes the process while nothing
// is due.
class EventLoop {
public:
    EventLoop();
    ~EventLoop();
    EventLoop(const EventLoop&) = delete;
    EventLoop& operator=(const EventLoop&) = delete;

    sd_event* event() const;
    Clock clock();
    MainThread mainThread();
    // `events` and the handler's argument are epoll bits. The descriptor stays the caller's.
    Handle watch(int descriptor, std::uint32_t events, std::function<void(std::uint32_t)> handler);
    // Called each time before the loop sleeps, for sources that buffer events in memory.
    Handle beforeSleep(std::function<void()> action);

    // Runs until `quit`; its argument is the result.
    int run();
    void quit(int status);

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace quorvane
