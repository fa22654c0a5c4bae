// Queue of actions for the main thread.
#pragma once

#include <deque>
#include <functional>
#include <mutex>

namespace quorvane {

// `post` may run on any thread, all else on the main thread.
class PostQueue {
public:
    PostQueue();
    ~PostQueue();
    PostQueue(const PostQueue&) = delete;
    PostQueue& operator=(const PostQueue&) = delete;

    // Readable while actions wait; -1 when the system could not create it.
    int descriptor() const { return descriptor_; }
    void post(std::function<void()> action);
    // Runs the actions that wait now; actions posted by them wait for the next call.
    void run();
    // Leaves the remaining actions for later, and keeps the loop from sleeping once.
    void stopRunning();
    // Drops waiting actions and all later ones.
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
