#if !__has_feature(objc_arc)
#error "This file needs automatic reference counting."
#endif

// The tables of this edition that the card needs.
#include "platform/LivePlatform.hpp"

namespace quorvane {

Result<LivePlatform> makeLivePlatform(LiveServices) {
    return std::unexpected{PlatformError{.description = "unavailable"}};
}

}  // namespace quorvane
