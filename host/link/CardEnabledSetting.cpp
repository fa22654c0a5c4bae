#include "host/link/CardEnabledSetting.hpp"

#include "QuorvaneKit/link/PortNames.hpp"
#include "QuorvaneKit/link/QuorvaneDarwinNotification.hpp"
#include "QuorvaneKit/link/SharedDefaults.hpp"

namespace quorvane {

std::expected<std::string, std::string> CardEnabledSetting::set(bool isEnabled) const {
    if (!sharedSuite) return std::unexpected{"the shared settings cannot be opened"};
    SharedDefaults defaults{sharedSuite};
    const std::string state = isEnabled ? "on" : "off";
    const std::string already = defaults.lockScreenEnabled() == isEnabled ? "already " : "";
    if (const auto written = defaults.setLockScreenEnabled(isEnabled); !written)
        return std::unexpected{"the shared settings cannot be written: " +
                               written.error().description};
    darwinNotices.post(QuorvaneDarwinNotification::lockScreenConfigurationChanged);
    std::string text = "The card is " + already + state + ".\n";
    if (!connectPort(std::string{kMessagePortBaseName}))
        text += "No host is running: this takes effect with the next quorvane-host run.\n";
    return text;
}

}  // namespace quorvane
