#include "QuorvaneKit/link/SharedDefaultsKey.hpp"

namespace quorvane {
namespace {

// In the order of the cases.
constexpr std::string_view kRawValues[] = {
    "lockScreenEnabled",
    "lockScreenRemovalRequested",
    "lockScreenRemovalTargetInstallID",
    "lockScreenAddOnLastSeen",
    "didShowStatusItemArrow",
    "dockEnabled",
    "hasCompletedOnboarding",
    "isNewInstall",
    "mainStatusItemSettings",
    "motionArtworkDisabledUntil",
    "statusItemSettings",
    "widgetAuthorKeys",
    "widgetCardShadowOn",
    "widgetEnabled",
    "widgetKitPlayerState",
    "widgetKitTheme",
    "widgetMotionArtworkTurnedOff",
    "widgetReducedCornersOn",
    "widgetSetupPlacements",
    "widgetSizes",
    "widgetSkippedVersions",
    "widgetStackOrder",
    "widgetUnderConstruction",
    "widgetUpdatesAnnouncedVersions",
    "widgetUpdatesFeedAudience",
    "widgetUpdatesLastAnnouncedAt",
    "widgetUpdatesLastCheckedAt",
    "widgetUpdatesLastDecisions",
    "widgetVisibilityOverrides",
    "widgetWindowLevel",
    "widgetWindowLevels",
};

}  // namespace

std::string_view rawValue(SharedDefaultsKey key) {
    return kRawValues[static_cast<std::size_t>(key)];
}

}  // namespace quorvane
