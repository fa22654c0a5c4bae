#if !__has_feature(objc_arc)
#error "This file needs automatic reference counting."
#endif

// The tables of this edition that the card needs.
#include "platform/LivePlatform.hpp"
#include "platform/macos/CardWindowsMacOS.hpp"
#include "platform/macos/DynamicLoaderMacOS.hpp"
#include "platform/macos/LocalizationMacOS.hpp"
#include "platform/macos/LockSourcesMacOS.hpp"
#include "platform/macos/PicturesMacOS.hpp"
#include "platform/macos/ProcessInfoMacOS.hpp"
#include "platform/macos/ScreensMacOS.hpp"

namespace quorvane {

Result<LivePlatform> makeLivePlatform(LiveServices services) {
    CardWindows windows = makeCardWindowsMacOS(services.clock);
    return LivePlatform{
        .services = std::move(services),
        .lockSources = makeLockSourcesMacOS(),
        .screens = makeScreensMacOS(),
        .cardWindows = std::move(windows),
        .decodeImage = decodeImageMacOS,
        .windowServerLoader = makeDynamicLoaderMacOS(),
        .beginActivity = makeBeginActivityMacOS(),
        .localized = localizedMacOS,
        .isRightToLeft = isRightToLeftMacOS,
        .owner = nullptr,
    };
}

}  // namespace quorvane
