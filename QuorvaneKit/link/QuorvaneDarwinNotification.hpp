// Names of the Darwin notices between the main application and its companions.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quorvane {

enum class QuorvaneDarwinNotification {
    // For the lock screen's link and the main application's lifecycle.
    playerStateChanged,
    lockScreenConfigurationChanged,
    mainAppWillTerminate,
    // For the main application's own features: desktop widgets, dock and status item.
    activeWidgetsChanged,
    installedWidgetsChanged,
    dockEnabledChanged,
    dockHelperUserQuit,
    dockHelperWillQuit,
    dockShouldQuit,
    helperSessionEnding,
    mainStatusItemSettingsChanged,
    statusItemSettingsChanged,
    scrobblesAccepted,
    topAlbumsPeriodChanged,
    widgetCardShadowChanged,
    widgetEnabledChanged,
    widgetHelperWillQuit,
    widgetMotionArtworkChanged,
    widgetReducedCornersChanged,
    widgetShouldQuit,
    widgetVisibilityChanged,
    widgetWindowLevelChanged,
};

// One notice for each widget.
enum class QuorvaneWidgetNotification { widgetReset, widgetSettingsChanged, widgetUpdated };

std::string_view rawValue(QuorvaneDarwinNotification notification);
std::string rawValue(QuorvaneWidgetNotification notification, std::string_view widgetIdentifier);

// Returns nullopt for an unknown name; the per-widget notices are not included.
std::optional<QuorvaneDarwinNotification> quorvaneDarwinNotification(std::string_view rawValue);

}  // namespace quorvane
