// Keys of the App Group's shared defaults.
#pragma once

namespace quorvane {

struct SharedDefaultsKey {
    // For the lock screen.
    static constexpr char lockScreenEnabled[] = "lockScreenEnabled";
    static constexpr char lockScreenRemovalRequested[] = "lockScreenRemovalRequested";
    static constexpr char lockScreenRemovalTargetInstallID[] = "lockScreenRemovalTargetInstallID";
    static constexpr char lockScreenAddOnLastSeen[] = "lockScreenAddOnLastSeen";

    // For the main application's own features; only the main application knows their values. Listed
    // so that a new key cannot reuse a name.
    static constexpr const char* kOthers[] = {
        "didShowStatusItemArrow",       "dockEnabled",
        "hasCompletedOnboarding",       "isNewInstall",
        "mainStatusItemSettings",       "motionArtworkDisabledUntil",
        "statusItemSettings",           "widgetAuthorKeys",
        "widgetCardShadowOn",           "widgetEnabled",
        "widgetKitPlayerState",         "widgetKitTheme",
        "widgetMotionArtworkTurnedOff", "widgetReducedCornersOn",
        "widgetSetupPlacements",        "widgetSizes",
        "widgetSkippedVersions",        "widgetStackOrder",
        "widgetUnderConstruction",      "widgetUpdatesAnnouncedVersions",
        "widgetUpdatesFeedAudience",    "widgetUpdatesLastAnnouncedAt",
        "widgetUpdatesLastCheckedAt",   "widgetUpdatesLastDecisions",
        "widgetVisibilityOverrides",    "widgetWindowLevel",
        "widgetWindowLevels",
    };
};

}  // namespace quorvane
