#include "platform/linux/loop/PostQueue.hpp"

#include <sys/eventfd.h>
#include <unistd.h>

#include <iterator>
#include <utility>

namespace quorvane {

PostQueue::PostQueue() : descriptor_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

PostQueue::~PostQueue() {
    if (descriptor_ >= 0) ::close(descriptor_);
}

void PostQueue::signal() const { eventfd_write(descriptor_, 1); }

void PostQueue::post(std::function<void()> action) {
    const std::lock_guard guard{mutex_};
    // A closed queue drops the action on the posting thread, which still owns the action's
    // captures.
    if (isClosed_) return;
    if (actions_.empty()) signal();
    actions_.push_back(std::move(action));
}

void PostQueue::run() {
    std::deque<std::function<void()>> batch;
    {
        const std::lock_guard guard{mutex_};
        eventfd_t count = 0;
        eventfd_read(descriptor_, &count);
        batch.swap(actions_);
    }
    isStopped_ = false;
    while (!isStopped_ && !batch.empty()) {
        const auto action = std::move(batch.front());
        batch.pop_front();
        action();
    }
    if (batch.empty()) return;
    const std::lock_guard guard{mutex_};
    actions_.insert(actions_.begin(), std::make_move_iterator(batch.begin()),
                    std::make_move_iterator(batch.end()));
    signal();
}

void PostQueue::stopRunning() {
    isStopped_ = true;
    signal();
}

void PostQueue::close() {
    std::deque<std::function<void()>> dropped;  // destroyed after the unlock: its captures may post
    const std::lock_guard guard{mutex_};
    isClosed_ = true;
    dropped.swap(actions_);
}

}  // namespace quorvane
