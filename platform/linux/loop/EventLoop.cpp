#include "platform/linux/loop/EventLoop.hpp"

#include <sys/epoll.h>

#include <utility>

#include "platform/linux/loop/PostQueue.hpp"
#include "platform/linux/loop/TimerQueue.hpp"

namespace quorvane {

EventLoop::EventLoop()
    : timers_(std::make_shared<TimerQueue>()), posts_(std::make_shared<PostQueue>()) {
    if (sd_event_new(&event_) < 0 || !attach()) event_ = sd_event_unref(event_);
}

EventLoop::~EventLoop() {
    posts_->close();
    sd_event_source_disable_unref(postSource_);
    timers_.reset();
    sd_event_unref(event_);
}

bool EventLoop::attach() {
    const auto onPosted = [](sd_event_source*, int, std::uint32_t, void* self) {
        static_cast<EventLoop*>(self)->posts_->run();
        return 0;
    };
    const auto onPrepare = [](sd_event_source*, void* self) {
        static_cast<EventLoop*>(self)->sleepers_.call();
        return 0;
    };
    return timers_->attach(event_) >= 0 &&
           sd_event_add_io(event_, &postSource_, posts_->descriptor(), EPOLLIN, onPosted, this) >=
               0 &&
           sd_event_source_set_prepare(postSource_, onPrepare) >= 0;
}

Clock EventLoop::clock() {
    const auto afterAbout = [weak = std::weak_ptr{timers_}](Duration delay, Duration tolerance,
                                                            std::function<void()> action) {
        const auto timers = weak.lock();
        return timers ? timers->after(delay, tolerance, std::move(action)) : Timer{};
    };
    return {.now = &TimerQueue::now,
            .after =
                [afterAbout](Duration delay, std::function<void()> action) {
                    return afterAbout(delay, {}, std::move(action));
                },
            .afterAbout = afterAbout};
}

MainThread EventLoop::mainThread() {
    return {.post = [weak = std::weak_ptr{posts_}](std::function<void()> action) {
        if (const auto posts = weak.lock()) posts->post(std::move(action));
    }};
}

Handle EventLoop::watch(int descriptor, std::uint32_t events,
                        std::function<void(std::uint32_t)> handler) {
    struct Watch {
        std::function<void(std::uint32_t)> handler;
        sd_event_source* source = nullptr;
    };
    const auto callback = [](sd_event_source*, int, std::uint32_t happened, void* self) {
        // A copy, because the handler may drop its own handle.
        const auto action = static_cast<Watch*>(self)->handler;
        action(happened);
        return 0;
    };
    auto watch = std::make_unique<Watch>(Watch{std::move(handler)});
    const int result =
        sd_event_add_io(event_, &watch->source, descriptor, events, callback, watch.get());
    if (result < 0) return {};
    return Handle{[owned = watch.release()] {
        sd_event_source_disable_unref(owned->source);
        delete owned;
    }};
}

int EventLoop::run() {
    while (!status_) {
        const int result = sd_event_run(event_, UINT64_MAX);
        // The loop itself has failed and cannot run again.
        if (result < 0) quit(EXIT_FAILURE);
    }
    return *std::exchange(status_, std::nullopt);
}

void EventLoop::quit(int status) {
    if (!status_) status_ = status;
    posts_->stopRunning();
    timers_->stopRunning();
}

}  // namespace quorvane
