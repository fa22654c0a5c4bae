#if !__has_feature(objc_arc)
#error "This file needs automatic reference counting."
#endif

// The tables of this edition that the card needs.
#include "platform/LivePlatform.hpp"
#include "platform/macos/DynamicLoaderMacOS.hpp"
#include "platform/macos/LocalizationMacOS.hpp"
#include "platform/macos/LockSourcesMacOS.hpp"
#include "platform/macos/ProcessInfoMacOS.hpp"
#include "platform/macos/ScreensMacOS.hpp"

namespace quorvane {

Result<LivePlatform> makeLivePlatform(LiveServices services) {
    return LivePlatform{
        .services = std::move(services),
        .lockSources = makeLockSourcesMacOS(),
        .screens = makeScreensMacOS(),
        .cardWindows = {},
        .decodeImage = {},
        .windowServerLoader = makeDynamicLoaderMacOS(),
        .beginActivity = makeBeginActivityMacOS(),
        .localized = localizedMacOS,
        .isRightToLeft = isRightToLeftMacOS,
        .owner = nullptr,
    };
}

}  // namespace quorvane
