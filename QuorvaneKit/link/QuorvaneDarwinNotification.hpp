// Names of the Darwin notices between the main application and its companions.
#pragma once

namespace quorvane {

struct QuorvaneDarwinNotification {
    // For the lock screen's link and the main application's lifecycle.
    static constexpr char playerStateChanged[] = "example.quillon.Quorvane.playerStateChanged";
    static constexpr char lockScreenConfigurationChanged[] =
        "example.quillon.Quorvane.lockScreenConfigurationChanged";
    static constexpr char mainAppWillTerminate[] = "example.quillon.Quorvane.mainAppWillTerminate";

    // For the main application's own features: desktop widgets, dock and status item. Listed so
    // that a new notice cannot reuse a name.
    static constexpr const char* kOthers[] = {
        "example.quillon.Quorvane.activeWidgetsChanged",
        "example.quillon.Quorvane.installedWidgetsChanged",
        "example.quillon.Quorvane.dockEnabledChanged",
        "example.quillon.Quorvane.dockHelperUserQuit",
        "example.quillon.Quorvane.dockHelperWillQuit",
        "example.quillon.Quorvane.dockShouldQuit",
        "example.quillon.Quorvane.helperSessionEnding",
        "example.quillon.Quorvane.mainStatusItemSettingsChanged",
        "example.quillon.Quorvane.statusItemSettingsChanged",
        "example.quillon.Quorvane.scrobblesAccepted",
        "example.quillon.Quorvane.topAlbumsPeriodChanged",
        "example.quillon.Quorvane.widgetCardShadowChanged",
        "example.quillon.Quorvane.widgetEnabledChanged",
        "example.quillon.Quorvane.widgetHelperWillQuit",
        "example.quillon.Quorvane.widgetMotionArtworkChanged",
        "example.quillon.Quorvane.widgetReducedCornersChanged",
        "example.quillon.Quorvane.widgetShouldQuit",
        "example.quillon.Quorvane.widgetVisibilityChanged",
        "example.quillon.Quorvane.widgetWindowLevelChanged",
    };
    // One notice for each widget, whose identifier follows.
    static constexpr const char* kWidgetPrefixes[] = {
        "example.quillon.Quorvane.widgetReset.",
        "example.quillon.Quorvane.widgetSettingsChanged.",
        "example.quillon.Quorvane.widgetUpdated.",
    };
};

}  // namespace quorvane
