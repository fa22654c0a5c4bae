#include "platform/macos/services/ServicesMacOS.hpp"

#import <dispatch/dispatch.h>

#include <atomic>
#include <utility>

#include "platform/macos/foundation/ReferenceCounting.hpp"

namespace quorvane {
namespace {

class SerialQueueMacOS final : public SerialQueue {
public:
    explicit SerialQueueMacOS(const std::string& label)
        : queue_(dispatch_queue_create(label.c_str(), DISPATCH_QUEUE_SERIAL)) {}

    ~SerialQueueMacOS() override {
        *isClosed_ = true;
        // The system cannot drop added blocks, so pending ones run and find the queue closed.
        dispatch_sync(queue_, ^{
                      });
    }

    bool async(std::function<void()> action) override {
        const auto isClosed = isClosed_;
        dispatch_async(queue_, ^{
          if (!*isClosed) action();
        });
        return true;
    }

private:
    const dispatch_queue_t queue_;
    const std::shared_ptr<std::atomic<bool>> isClosed_ = std::make_shared<std::atomic<bool>>(false);
};

}  // namespace

MainThread makeMainThreadMacOS() {
    return {.post = [](std::function<void()> action) {
        dispatch_async(dispatch_get_main_queue(), ^{
          action();
        });
    }};
}

MakeSerialQueue makeSerialQueuesMacOS() {
    return [](const std::string& label) { return std::make_unique<SerialQueueMacOS>(label); };
}

}  // namespace quorvane
