#if !__has_feature(objc_arc)
#error "This file needs automatic reference counting."
#endif

// The live tables that the card needs.
#include "platform/LivePlatform.hpp"
#include "platform/macos/card/CardWindowsMacOS.hpp"
#include "platform/macos/card/LocalizationMacOS.hpp"
#include "platform/macos/card/PicturesMacOS.hpp"
#include "platform/macos/card/ScreensMacOS.hpp"
#include "platform/macos/foundation/DynamicLoaderMacOS.hpp"
#include "platform/macos/services/LockSourcesMacOS.hpp"
#include "platform/macos/services/ProcessInfoMacOS.hpp"

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
