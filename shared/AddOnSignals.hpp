// Names that the add-on and the installer share: distributed notices with their payload, the
// add-on's command line, and keys of the add-on's defaults.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/PropertyValue.hpp"

namespace quorvane {

struct AddOnSignals {
    // Notices, all without a sending object.
    static constexpr const char* kStatusRequest =
        "example.quillon.Quorvane.LockScreenAddOn.statusRequest";
    static constexpr const char* kStatus = "example.quillon.Quorvane.LockScreenAddOn.status";
    static constexpr const char* kQuit = "example.quillon.Quorvane.LockScreenAddOn.quit";

    // Arguments with which the installer starts the add-on.
    static constexpr const char* kUninstallArgument = "--uninstall";
    static constexpr const char* kInstalledArgument = "--installed";

    // In the add-on's own defaults: true when the last lock screen left no room for a card.
    static constexpr const char* kNoRoomKey = "lastLockHadNoRoom";
    // These carry a removal from one launch to the next. The installer clears the remains of an
    // interrupted removal.
    static constexpr const char* kRemovalPendingKey = "removalPending";                // a boolean
    static constexpr const char* kRemovalBundleIdentityKey = "removalBundleIdentity";  // a string

    static bool contains(const std::vector<std::string>& arguments, std::string_view argument);

    // The payload of kStatus.
    struct Status {
        bool isConnected = false;  // to the main application
        std::string version;
        bool operator==(const Status&) const = default;

        PropertyDictionary userInfo() const;
        // Returns nullopt when a key is missing or has another type, because such a sender is not
        // the add-on.
        static std::optional<Status> fromUserInfo(const PropertyDictionary& userInfo);
    };
};

}  // namespace quorvane
