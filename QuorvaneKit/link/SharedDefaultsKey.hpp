// Every key of the App Group's shared defaults, so that no new one takes a name that is in use.
#pragma once

#include <cstddef>
#include <string_view>

namespace quorvane {

enum class SharedDefaultsKey : std::size_t {
    // Of the lock screen.
    lockScreenEnabled,
    lockScreenRemovalRequested,
    lockScreenRemovalTargetInstallID,
    lockScreenAddOnLastSeen,
    // Of the main application's own features, which alone knows their values.
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
