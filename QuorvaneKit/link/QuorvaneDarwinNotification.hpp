// The names of the Darwin notices between the main application and its companions.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quorvane {

enum class QuorvaneDarwinNotification {
    // The link of the lock screen, and the main application's life.
    playerStateChanged,
    lockScreenConfigurationChanged,
    mainAppWillTerminate,
    // The main application's own: desktop widgets, dock and status item.
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

// Nothing for a name that is none of the notices; those of single widgets are not among them.
std::optional<QuorvaneDarwinNotification> quorvaneDarwinNotification(std::string_view rawValue);

}  // namespace quorvane
