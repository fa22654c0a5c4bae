#include "QuorvaneKit/link/QuorvaneDarwinNotification.hpp"

#include <algorithm>
#include <cstddef>

namespace quorvane {
namespace {

// In the order of the cases.
constexpr std::string_view kRawValues[] = {
    "example.quillon.Quorvane.playerStateChanged",
    "example.quillon.Quorvane.lockScreenConfigurationChanged",
    "example.quillon.Quorvane.mainAppWillTerminate",
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
constexpr std::string_view kWidgetPrefixes[] = {
    "example.quillon.Quorvane.widgetReset.",
    "example.quillon.Quorvane.widgetSettingsChanged.",
    "example.quillon.Quorvane.widgetUpdated.",
};

}  // namespace

std::string_view rawValue(QuorvaneDarwinNotification notification) {
    return kRawValues[static_cast<std::size_t>(notification)];
}

std::string rawValue(QuorvaneWidgetNotification notification, std::string_view widgetIdentifier) {
    return std::string{kWidgetPrefixes[static_cast<std::size_t>(notification)]}.append(
        widgetIdentifier);
}

std::optional<QuorvaneDarwinNotification> quorvaneDarwinNotification(std::string_view rawValue) {
    const auto* const place = std::ranges::find(kRawValues, rawValue);
    if (place == std::end(kRawValues)) return std::nullopt;
    return static_cast<QuorvaneDarwinNotification>(place - std::begin(kRawValues));
}

}  // namespace quorvane
