#include "QuorvaneKit/link/WaitFlag.hpp"

#include <condition_variable>
#include <mutex>

namespace quorvane {
namespace {

class RealWaitFlag final : public WaitFlag {
public:
    void raise() override {
        {
            const std::lock_guard guard{mutex_};
            isRaised_ = true;
        }
        raised_.notify_all();
    }
    bool waitFor(Duration limit) override {
        std::unique_lock lock{mutex_};
        return raised_.wait_for(lock, limit, [this] { return isRaised_; });
    }

private:
    std::mutex mutex_;
    std::condition_variable raised_;
    bool isRaised_ = false;  // under mutex_
};

}  // namespace

std::unique_ptr<WaitFlag> makeWaitFlag() { return std::make_unique<RealWaitFlag>(); }

}  // namespace quorvane
