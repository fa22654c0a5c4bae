#include "QuorvaneKit/link/CancellableWait.hpp"

namespace quorvane {

void CancellableWait::update(const std::function<void()>& change) {
    {
        const std::lock_guard guard{mutex_};
        change();
    }
    changed_.notify_all();
}

bool CancellableWait::waitFor(Duration limit, const Condition& holds) {
    std::unique_lock lock{mutex_};
    return wait(lock, limit, [&] { return isCancelled_ || holds(); }) && holds();
}

void CancellableWait::cancel() {
    update([this] { isCancelled_ = true; });
}

bool CancellableWait::isCancelled() const {
    const std::lock_guard guard{mutex_};
    return isCancelled_;
}

bool CancellableWait::wait(std::unique_lock<std::mutex>& lock, Duration limit,
                           const Condition& isOver) {
    return changed_.wait_for(lock, limit, isOver);
}

}  // namespace quorvane
