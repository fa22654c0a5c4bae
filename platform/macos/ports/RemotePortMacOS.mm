#import <CoreFoundation/CoreFoundation.h>

#include "platform/Seconds.hpp"
#include "platform/Wipe.hpp"
#include "platform/macos/foundation/CFHandle.hpp"
#include "platform/macos/foundation/FoundationValues.hpp"
#include "platform/macos/foundation/ReferenceCounting.hpp"
#include "platform/macos/ports/MessagePortsMacOS.hpp"

namespace quorvane {
namespace {

class RemotePortMacOS final : public RemotePort {
public:
    explicit RemotePortMacOS(CFHandle<CFMessagePortRef> port) : port_(std::move(port)) {}

    // Invalidate, or the next port of this name would be the same object, dead or not.
    ~RemotePortMacOS() override { cancel(); }

    // A waiting send checks the port each time its run loop wakes.
    void cancel() override { CFMessagePortInvalidate(port_.get()); }

    PortReply send(PortRequest request) override {
        @autoreleasepool {
            // Retain the port, because waiting runs the thread's run loop, which may destroy this
            // object.
            const auto port = CFHandle<CFMessagePortRef>::retaining(port_.get());
            NSMutableData* const body = dataFromParts(std::array{request.secret, request.body});
            const std::size_t secretLength = request.secret.size();
            CFDataRef reply = nullptr;
            const SInt32 status = CFMessagePortSendRequest(
                port.get(), request.messageID, (__bridge CFDataRef)body,
                secondsOf(request.sendTimeout), secondsOf(request.receiveTimeout),
                request.awaitsReply ? kCFRunLoopDefaultMode : nullptr, &reply);
            wipe({static_cast<std::byte*>(body.mutableBytes), secretLength});
            NSData* answer = (__bridge_transfer NSData*)reply;
            return {.status = status,
                    .body = answer.length > 0 ? std::optional{bytesFrom(answer)} : std::nullopt};
        }
    }

private:
    const CFHandle<CFMessagePortRef> port_;
};

}  // namespace

ConnectPort makeConnectPortMacOS() {
    return [](const std::string& name) -> std::unique_ptr<RemotePort> {
        CFHandle<CFMessagePortRef> port{
            CFMessagePortCreateRemote(nullptr, (__bridge CFStringRef)stringFrom(name))};
        if (!port) return nullptr;
        return std::make_unique<RemotePortMacOS>(std::move(port));
    };
}

}  // namespace quorvane
