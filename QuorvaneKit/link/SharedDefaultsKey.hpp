// List of all keys of the App Group's shared defaults, so that a new key cannot reuse a name.
#pragma once

#include <cstddef>
#include <string_view>

namespace quorvane {

enum class SharedDefaultsKey : std::size_t {
    // For the lock screen.
    lockScreenEnabled,
    lockScreenRemovalRequested,
    lockScreenRemovalTargetInstallID,
    lockScreenAddOnLastSeen,
    // For the main application's own features; only the main application knows their values.
    didShowStatusItemArrow,
    dockEnabled,
    hasCompletedOnboarding,
    isNewInstall,
    mainStatusItemSettings,
    motionArtworkDisabledUntil,
    statusItemSettings,
    widgetAuthorKeys,
    widgetCardShadowOn,
    widgetEnabled,
    widgetKitPlayerState,
    widgetKitTheme,
    widgetMotionArtworkTurnedOff,
    widgetReducedCornersOn,
    widgetSetupPlacements,
    widgetSizes,
    widgetSkippedVersions,
    widgetStackOrder,
    widgetUnderConstruction,
    widgetUpdatesAnnouncedVersions,
    widgetUpdatesFeedAudience,
    widgetUpdatesLastAnnouncedAt,
    widgetUpdatesLastCheckedAt,
    widgetUpdatesLastDecisions,
    widgetVisibilityOverrides,
    widgetWindowLevel,
    widgetWindowLevels,
};

std::string_view rawValue(SharedDefaultsKey key);

}  // namespace quorvane
