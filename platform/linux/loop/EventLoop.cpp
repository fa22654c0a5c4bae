#include "platform/linux/loop/EventLoop.hpp"

#include <sys/epoll.h>

#include <optional>
#include <utility>

#include "platform/Listeners.hpp"
#include "platform/linux/loop/PostQueue.hpp"
#include "platform/linux/loop/TimerQueue.hpp"

namespace quorvane {

struct EventLoop::State {
    sd_event* event = nullptr;
    std::shared_ptr<TimerQueue> timers = std::make_shared<TimerQueue>();
    std::shared_ptr<PostQueue> posts = std::make_shared<PostQueue>();
    sd_event_source* postSource = nullptr;
    Listeners<> sleepers;
    std::optional<int> status;

    State();
    ~State();
    bool attach();
};

EventLoop::State::State() {
    if (sd_event_new(&event) >= 0 && attach()) return;
    event = sd_event_unref(event);
}

EventLoop::State::~State() {
    posts->close();
    sd_event_source_disable_unref(postSource);
    timers.reset();
    sd_event_unref(event);
}

bool EventLoop::State::attach() {
    const auto onPosted = [](sd_event_source*, int, std::uint32_t, void* self) {
        static_cast<State*>(self)->posts->run();
        return 0;
    };
    const auto onPrepare = [](sd_event_source*, void* self) {
        static_cast<State*>(self)->sleepers.call();
        return 0;
    };
    return timers->attach(event) >= 0 &&
           sd_event_add_io(event, &postSource, posts->descriptor(), EPOLLIN, onPosted, this) >= 0 &&
           sd_event_source_set_prepare(postSource, onPrepare) >= 0;
}

EventLoop::EventLoop() : state_(std::make_unique<State>()) {}
EventLoop::~EventLoop() = default;

sd_event* EventLoop::event() const { return state_->event; }

Clock EventLoop::clock() {
    const auto afterAbout = [weak = std::weak_ptr{state_->timers}](
                                Duration delay, Duration tolerance, std::function<void()> action) {
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
    return {.post = [weak = std::weak_ptr{state_->posts}](std::function<void()> action) {
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
        sd_event_add_io(state_->event, &watch->source, descriptor, events, callback, watch.get());
    if (result < 0) return {};
    return Handle{[owned = watch.release()] {
        sd_event_source_disable_unref(owned->source);
        delete owned;
    }};
}

Handle EventLoop::beforeSleep(std::function<void()> action) {
    return state_->sleepers.add(std::move(action));
}

int EventLoop::run() {
    State& state = *state_;
    while (!state.status) {
        const int result = sd_event_run(state.event, UINT64_MAX);
        // The loop itself has failed and cannot run again.
        if (result < 0) quit(EXIT_FAILURE);
    }
    return *std::exchange(state.status, std::nullopt);
}

void EventLoop::quit(int status) {
    if (!state_->status) state_->status = status;
    state_->posts->stopRunning();
    state_->timers->stopRunning();
}

}  // namespace quorvane
