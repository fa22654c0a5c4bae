// The words between the add-on and the installer: distributed notices with their payload, and the
// add-on's command line. Both sides spell them from here.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/PropertyValue.hpp"

namespace quorvane {

struct AddOnSignals {
    // Notices. None has a sending object.
    static constexpr const char* kStatusRequest =
        "example.quillon.Quorvane.LockScreenAddOn.statusRequest";
    static constexpr const char* kStatus = "example.quillon.Quorvane.LockScreenAddOn.status";
    static constexpr const char* kQuit = "example.quillon.Quorvane.LockScreenAddOn.quit";

    // Arguments that the installer starts the add-on with.
    static constexpr const char* kUninstallArgument = "--uninstall";
    static constexpr const char* kInstalledArgument = "--installed";

    // In the add-on's own defaults: true when the last lock screen left no room for a card.
    static constexpr const char* kNoRoomKey = "lastLockHadNoRoom";

    static bool contains(const std::vector<std::string>& arguments, std::string_view argument);

    // The payload of kStatus.
    struct Status {
        bool isConnected = false;  // to the main application
        std::string version;
        bool operator==(const Status&) const = default;

        PropertyDictionary userInfo() const;
        // Nothing when a key is missing or of another type: whoever posted it is no add-on of ours.
        static std::optional<Status> fromUserInfo(const PropertyDictionary& userInfo);
    };
};

}  // namespace quorvane
