#if !__has_feature(objc_arc)
#error "This file needs automatic reference counting."
#endif

// The tables of this edition that need no screen.
#include "platform/LivePlatform.hpp"
#include "platform/macos/ClockMacOS.hpp"
#include "platform/macos/MainThreadMacOS.hpp"

namespace quorvane {

Result<LiveServices> makeLiveServices(int, char**, const std::string&) {
    LiveServices services;
    services.clock = makeClockMacOS();
    services.mainThread = makeMainThreadMacOS();
    return std::unexpected{PlatformError{.description = "unavailable"}};
}

}  // namespace quorvane
