// The live tables that the card needs.
#include "platform/LivePlatform.hpp"
#include "platform/macos/card/CardMacOS.hpp"
#include "platform/macos/foundation/ReferenceCounting.hpp"
#include "platform/macos/services/ServicesMacOS.hpp"

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
