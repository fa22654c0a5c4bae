// Actions on their way to the main thread.
#pragma once

#include <deque>
#include <functional>
#include <mutex>

namespace quorvane {

// `post` on any thread, the rest on the main thread.
class PostQueue {
public:
    PostQueue();
    ~PostQueue();
    PostQueue(const PostQueue&) = delete;
    PostQueue& operator=(const PostQueue&) = delete;

    // Readable while actions wait; -1 when the system gave none.
    int descriptor() const { return descriptor_; }
    void post(std::function<void()> action);
    // Runs what waits now; what that posts in turn waits for the next call.
    void run();
    // Leaves what still waits for later, and keeps the loop from sleeping once.
    void stopRunning();
    // Drops what waits and what is posted from now on.
    void close();

private:
    void signal() const;

    const int descriptor_;
    bool isStopped_ = false;
    std::mutex mutex_;
    std::deque<std::function<void()>> actions_;  // under mutex_
    bool isClosed_ = false;                      // under mutex_
};

}  // namespace quorvane
