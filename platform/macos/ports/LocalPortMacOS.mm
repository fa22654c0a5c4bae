#import <CoreFoundation/CoreFoundation.h>

#include <mutex>

#include "platform/macos/foundation/CFHandle.hpp"
#include "platform/macos/foundation/FoundationValues.hpp"
#include "platform/macos/foundation/ReferenceCounting.hpp"
#include "platform/macos/ports/MessagePortsMacOS.hpp"

namespace quorvane {
namespace {

// Transfers the returned reference to the system. Null sends an empty reply at once.
CFDataRef received(CFMessagePortRef, SInt32 messageID, CFDataRef data, void* info) {
    @autoreleasepool {
        const auto& handler = *static_cast<const PortHandler*>(info);
        NSData* body = (__bridge NSData*)data;
        const PortAnswer reply =
            handler(messageID, {static_cast<const std::byte*>(body.bytes), body.length});
        if (reply.size() == 0) return nullptr;
        return (__bridge_retained CFDataRef)dataFromParts(reply.parts());
    }
}

class LocalPortMacOS final : public LocalPort {
public:
    static std::unique_ptr<LocalPort> open(const std::string& name, PortHandler handler) {
        std::unique_ptr<LocalPortMacOS> port{new LocalPortMacOS{std::move(handler)}};
        CFMessagePortContext context{};
        context.info = &port->handler_;
        Boolean isOthers = false;  // another port of this process owns the name
        CFHandle<CFMessagePortRef> opened{CFMessagePortCreateLocal(
            nullptr, (__bridge CFStringRef)stringFrom(name), received, &context, &isOthers)};
        if (!opened || isOthers) return nullptr;
        port->port_ = std::move(opened);
        return port;
    }

    ~LocalPortMacOS() override {
        if (port_) CFMessagePortInvalidate(port_.get());
    }

    void run() override {
        @autoreleasepool {
            const CFRunLoopRef current = CFRunLoopGetCurrent();
            if (!begin(current)) return;
            const CFHandle<CFRunLoopSourceRef> source{
                CFMessagePortCreateRunLoopSource(nullptr, port_.get(), 0)};
            CFRunLoopAddSource(current, source.get(), kCFRunLoopDefaultMode);
            CFRunLoopRun();
            CFRunLoopRemoveSource(current, source.get(), kCFRunLoopDefaultMode);
            end();
        }
    }

    void stop() override {
        const std::lock_guard guard{mutex_};
        isStopped_ = true;
        if (!loop_) return;
        // Posts a block, because a loop that does not run yet would ignore a stop.
        const CFRunLoopRef loop = loop_;
        CFRunLoopPerformBlock(loop, kCFRunLoopDefaultMode, ^{
          CFRunLoopStop(loop);
        });
        CFRunLoopWakeUp(loop);
    }

private:
    explicit LocalPortMacOS(PortHandler handler) : handler_(std::move(handler)) {}

    bool begin(CFRunLoopRef loop) {
        const std::lock_guard guard{mutex_};
        if (isStopped_) return false;
        loop_ = loop;
        return true;
    }

    void end() {
        const std::lock_guard guard{mutex_};
        loop_ = nullptr;
    }

    PortHandler handler_;  // the system holds its address while the port is valid
    CFHandle<CFMessagePortRef> port_;
    std::mutex mutex_;
    bool isStopped_ = false;       // under mutex_
    CFRunLoopRef loop_ = nullptr;  // under mutex_, while `run` runs
};

}  // namespace

OpenPort makeOpenPortMacOS() { return LocalPortMacOS::open; }

}  // namespace quorvane
