#include "platform/linux/loop/SerialQueueLinux.hpp"

#include <sys/prctl.h>

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <system_error>
#include <thread>

namespace quorvane {
namespace {

// State shared by the queue and its thread, which may outlive the queue by the end of one action.
struct QueueWork {
    explicit QueueWork(std::string itsLabel) : label(std::move(itsLabel)) {}

    void run() {
        nameCurrentThread(label);
        std::unique_lock lock{mutex};
        while (true) {
            changed.wait(lock, [this] { return isClosed || !actions.empty(); });
            if (isClosed) return;
            // Destroy the action before the next one runs, and outside the lock, because it may own
            // objects whose destruction takes long.
            auto action = std::move(actions.front());
            actions.pop_front();
            lock.unlock();
            action();
            action = nullptr;
            lock.lock();
        }
    }

    const std::string label;
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::function<void()>> actions;  // under mutex
    bool isClosed = false;                      // under mutex
};

class SerialQueueLinux final : public SerialQueue {
public:
    explicit SerialQueueLinux(std::string label)
        : work_(std::make_shared<QueueWork>(std::move(label))) {}

    ~SerialQueueLinux() override {
        close();
        if (!thread_.joinable()) return;
        if (thread_.get_id() == std::this_thread::get_id())
            thread_.detach();
        else
            thread_.join();
    }

    bool async(std::function<void()> action) override {
        // Holds the lock to the end, because the action may destroy the queue.
        const std::lock_guard guard{work_->mutex};
        if (!thread_.joinable() && !startThread()) return false;
        work_->actions.push_back(std::move(action));
        work_->changed.notify_one();
        return true;
    }

private:
    bool startThread() try {
        thread_ = std::thread{[work = work_] { work->run(); }};
        return true;
    } catch (const std::system_error&) {
        return false;
    }

    // Drops waiting actions at once, outside the lock.
    void close() {
        std::deque<std::function<void()>> dropped;
        const std::lock_guard guard{work_->mutex};
        work_->isClosed = true;
        dropped.swap(work_->actions);
        work_->changed.notify_one();
    }

    // Shared, because the thread outlives the queue when an action destroys its own queue.
    const std::shared_ptr<QueueWork> work_;
    std::thread thread_;  // started under the mutex
};

}  // namespace

void nameCurrentThread(const std::string& name) {
    constexpr std::size_t kKept = 15;
    prctl(PR_SET_NAME, name.c_str() + name.size() - std::min(name.size(), kKept));
}

MakeSerialQueue makeSerialQueuesLinux() {
    return [](std::string label) { return std::make_unique<SerialQueueLinux>(std::move(label)); };
}

}  // namespace quorvane
