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

class SerialQueueLinux final : public SerialQueue {
public:
    explicit SerialQueueLinux(std::string label) : label_(std::move(label)) {}

    ~SerialQueueLinux() override {
        close();
        if (thread_.joinable()) thread_.join();
    }

    bool async(std::function<void()> action) override {
        const std::lock_guard guard{mutex_};
        if (!thread_.joinable() && !startThread()) return false;
        actions_.push_back(std::move(action));
        changed_.notify_one();
        return true;
    }

private:
    bool startThread() try {
        thread_ = std::thread{[this] { run(); }};
        return true;
    } catch (const std::system_error&) {
        return false;
    }

    void run() {
        nameCurrentThread(label_);
        std::unique_lock lock{mutex_};
        while (true) {
            changed_.wait(lock, [this] { return isClosed_ || !actions_.empty(); });
            if (isClosed_) return;
            // Destroy the action before the next one runs, and outside the lock, because it may own
            // objects whose destruction takes long.
            auto action = std::move(actions_.front());
            actions_.pop_front();
            lock.unlock();
            action();
            action = nullptr;
            lock.lock();
        }
    }

    // Drops waiting actions at once, outside the lock.
    void close() {
        std::deque<std::function<void()>> dropped;
        const std::lock_guard guard{mutex_};
        isClosed_ = true;
        dropped.swap(actions_);
        changed_.notify_one();
    }

    const std::string label_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<std::function<void()>> actions_;  // under mutex_
    bool isClosed_ = false;                      // under mutex_
    std::thread thread_;                         // started under mutex_
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
