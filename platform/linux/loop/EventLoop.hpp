// Main loop: one epoll loop with timers, file descriptors and actions from other threads.
#pragma once

#include <systemd/sd-event.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "platform/Clock.hpp"
#include "platform/Handle.hpp"
#include "platform/Listeners.hpp"
#include "platform/MainThread.hpp"

namespace quorvane {

class PostQueue;
class TimerQueue;

// Used on one thread only, which is the main thread of everything on this loop; only
// `mainThread().post` may be called from any. Does not wake up while no event is due. Handles,
// timers and tables made here may outlive it and then do nothing.
class EventLoop {
public:
    EventLoop();
    ~EventLoop();
    EventLoop(const EventLoop&) = delete;
    EventLoop& operator=(const EventLoop&) = delete;

    // Null when no loop could be created.
    sd_event* event() const { return event_; }
    // The clock keeps counting while the machine sleeps: timers due during sleep run right after
    // it.
    Clock clock();
    MainThread mainThread();
    // `events` and the handler's argument are epoll bits. The caller keeps ownership of the
    // descriptor and keeps it open until the handle is dropped. One watch per descriptor. Returns
    // an empty handle for a descriptor that epoll cannot watch (a plain file, a closed number).
    Handle watch(int descriptor, std::uint32_t events, std::function<void(std::uint32_t)> handler);
    // Called each time before the loop sleeps, for event sources that buffer in memory.
    Handle beforeSleep(std::function<void()> action) { return sleepers_.add(std::move(action)); }

    // Runs until `quit` and returns the status passed to it. May be called again afterwards.
    int run();
    // The first of several calls determines the status. A call before `run` makes `run` return at
    // once.
    void quit(int status);

private:
    bool attach();

    sd_event* event_ = nullptr;
    // Shared only for the weak pointers of timers and tables.
    std::shared_ptr<TimerQueue> timers_;
    std::shared_ptr<PostQueue> posts_;
    sd_event_source* postSource_ = nullptr;
    Listeners<> sleepers_;
    std::optional<int> status_;
};

}  // namespace quorvane
