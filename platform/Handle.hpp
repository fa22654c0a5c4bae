// Owner of something that must be ended: a timer, an observation, an activity. Destroying the
// handle ends it.
#pragma once

#include <functional>
#include <utility>

namespace quorvane {

// Move-only. An empty handle holds nothing. The release action runs at most once, on the thread
// that drops the handle.
class [[nodiscard]] Handle {
public:
    Handle() = default;
    explicit Handle(std::function<void()> release) : release_(std::move(release)) {}
    Handle(Handle&& other) noexcept : release_(std::exchange(other.release_, nullptr)) {}
    Handle& operator=(Handle&& other) noexcept {
        // Assign first, then release the old value, because the release may re-enter.
        auto old = std::exchange(release_, std::exchange(other.release_, nullptr));
        if (old) old();
        return *this;
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() { reset(); }

    void reset() {
        if (auto release = std::exchange(release_, nullptr)) release();
    }
    explicit operator bool() const { return release_ != nullptr; }

private:
    std::function<void()> release_;
};

// Destroying it cancels the timer. A timer that has fired still converts to true until its owner
// drops it.
using Timer = Handle;

}  // namespace quorvane
